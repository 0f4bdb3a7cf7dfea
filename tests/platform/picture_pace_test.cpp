// Which frames get a picture where time is short.
#include "platform/picture_pace.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace halvenor::agl {
namespace {

struct Show {
  int frames = 0;
  int pictures = 0;
  int longestGap = 0; ///< frames without a picture in a row
};

// Ten seconds of frames that take so many milliseconds with and without a picture, and pauses.
Show Simulate(PicturePace& pace, std::uint64_t picture, std::uint64_t trails, std::uint64_t pause) {
  constexpr std::uint64_t kMillisecond = 1'000'000;
  Show show;
  std::uint64_t now = 5'000 * kMillisecond;
  int gap = 0;
  for (const std::uint64_t end = now + 10'000 * kMillisecond; now < end; ++show.frames) {
    now += pause * kMillisecond;
    const bool hasPicture = pace.HasTime(now);
    const std::uint64_t begin = now;
    now += (hasPicture ? picture : trails) * kMillisecond;
    pace.Add(begin, now, hasPicture);
    show.pictures += hasPicture ? 1 : 0;
    gap = hasPicture ? 0 : gap + 1;
    show.longestGap = std::max(show.longestGap, gap);
  }
  return show;
}

TEST(PicturePaceTest, PicturesAreLeftOutOnlyWhereThatMakesFramesTimely) {
  const struct {
    const char* what;
    std::uint64_t picture, trails, pause;
    int leastFrames, leastPictures, mostPictures; // in ten seconds
    int longestGap;
  } cases[] = {
      {"fast", 5, 2, 10, 660, 660, 670, 0},
      {"just in time", 10, 2, 10, 500, 500, 501, 0},
      {"a bit slow", 15, 2, 10, 498, 250, 400, 1},
      {"slow: every second one", 25, 2, 3, 500, 200, 450, 3},
      {"too slow", 50, 2, 10, 410, 102, 106, 3},
      {"hopeless", 100, 50, 10, 130, 32, 40, 3},
      {"slow by choice", 30, 2, 50, 125, 125, 126, 0},
  };
  for (const auto& row : cases) {
    PicturePace pace;
    const Show show = Simulate(pace, row.picture, row.trails, row.pause);
    EXPECT_GE(show.frames, row.leastFrames) << row.what;
    EXPECT_GE(show.pictures, row.leastPictures) << row.what;
    EXPECT_LE(show.pictures, row.mostPictures) << row.what;
    EXPECT_LE(show.longestGap, row.longestGap) << row.what;
  }
}

TEST(PicturePaceTest, OneLongFrameCostsFewPictures) {
  PicturePace pace;
  Simulate(pace, 5, 2, 10);
  pace.Add(15'020'000'000, 25'000'000'000, true);
  int without = 0;
  for (std::uint64_t now = 25'010'000'000; now < 26'000'000'000; now += 15'000'000) {
    const bool hasPicture = pace.HasTime(now);
    without += hasPicture ? 0 : 1;
    pace.Add(now, now + 5'000'000, hasPicture);
  }
  EXPECT_GT(without, 0);
  EXPECT_LE(without, 12);
}

} // namespace
} // namespace halvenor::agl
