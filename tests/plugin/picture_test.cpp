// What a viewer sees: the real module on the software renderer.
#include "tests/plugin/offscreen_plugin.h"

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr int kPictureSide = 480;

// How far from the middle the band reaches, in halves of the picture, at full amplitude.
double Reach(int magnitude) {
  return 0.7 * (0.495 + std::sqrt(0.495) * magnitude / 256.0);
}

// Lines and texels have a width: the edge lies within this many pixels.
constexpr double kEdge = 4.0;

TEST(Picture, ShowsTheLeftChannelAboveAndTheRightBelowOrSideBySide) {
  Settings settings = PlainLook();
  for (const bool vertical : {false, true}) {
    settings.verticalLayout = vertical ? 1 : 0;
    OffscreenPlugin plugin(settings, kPictureSide, kPictureSide);
    plugin.Step(2);
    EXPECT_EQ(plugin.LitPixels(0, 0, kPictureSide, kPictureSide), 0) << "silence";
    plugin.DeliverFlat(255, 64, 300); // settles at 253 and 62; the loudness passes the cap
    plugin.Step(3);
    for (const int place : {50, 240, 440}) {
      const auto lit = vertical ? plugin.LitColumns(place) : plugin.LitRows(place);
      EXPECT_NEAR(lit[0], kPictureSide / 2.0 * (1 - Reach(253)), kEdge)
          << vertical << ", " << place;
      EXPECT_NEAR(lit[1], kPictureSide / 2.0 * (1 + Reach(62)), kEdge) << vertical << ", " << place;
    }
  }
}

TEST(Picture, TextsStandWhereTheyBelong) {
  for (const int size : {9, 24}) {
    Settings settings = PlainLook();
    settings.showFrameRate = 1;
    settings.numFrequencyLabels = 10;
    settings.fontSize = size;
    OffscreenPlugin plugin(settings, kWidth, kHeight);
    plugin.Step(2);
    // The frame rate: from eight half sizes before the right edge, on the bottom line.
    EXPECT_GT(plugin.LitPixels(kWidth - 4 * size - 2, kHeight - 2 * size, kWidth, kHeight), size);
    // Labels: below the middle line at every tenth of the width, ticks across it.
    for (int label = 0; label < 10; ++label) {
      const int x = static_cast<int>((0.03 + 0.1 * label) * kWidth);
      EXPECT_GT(plugin.LitPixels(x, kHeight / 2 + 4, x + 3 * size, kHeight / 2 + 12 + size), size);
      EXPECT_GT(plugin.LitPixels(x - 1, kHeight / 2 - 3, x + 2, kHeight / 2 + 3), 2);
    }
    EXPECT_EQ(plugin.LitPixels(0, 0, kWidth, kHeight / 2 - 10 - size), 0);
  }
}

TEST(Picture, PanelsAndMessagesFitEverySizeAndStayInside) {
  for (const auto& [width, height] : {std::pair{64, 64}, {640, 480}, {1280, 720}, {3840, 2160}}) {
    for (const int size : {9, 24}) {
      SCOPED_TRACE(testing::Message() << width << "x" << height << ", font size " << size);
      Settings settings = PlainLook();
      settings.fontSize = size;
      settings.showFrameRate = 1;
      settings.numFrequencyLabels = 10;
      OffscreenPlugin plugin(settings, width, height);
      // The panel begins half its width from the right edge: left of a small picture, and then
      // none of it shows. The message stands in the second line from the top.
      const int panel = width - 12 * size;
      const int line = size + size / 2;
      plugin.Press('i');
      plugin.Press('a');
      plugin.Step(2);
      EXPECT_EQ(plugin.LitPixels(0, 0, width, size / 2), 0) << "above the first line";
      EXPECT_GT(
          plugin.LitPixels(0, size / 2, std::min(width, 12 * size), std::min(height, 2 * line)),
          size);
      const int lines = plugin.LitPixels(std::max(panel, 0), line, width, height);
      EXPECT_TRUE(panel < 0 ? height < 100 : lines > 20 * size) << lines;

      // In a smaller rectangle nothing touches what lies around it.
      const int left = width / 4, top = height / 4;
      const int right = width - width / 8, bottom = height - top;
      plugin.SetRect({static_cast<std::int16_t>(top), static_cast<std::int16_t>(left),
                      static_cast<std::int16_t>(bottom), static_cast<std::int16_t>(right)});
      plugin.DeliverFlat(255, 255, 20);
      plugin.Press('h');
      plugin.Step(2);
      const int lit = plugin.LitPixels(left, top, right, bottom);
      EXPECT_GT(lit, size);
      EXPECT_EQ(plugin.LitPixels(0, 0, width, height), lit);
    }
  }
}

TEST(Picture, FollowsResizesAndComesBackAfterHiding) {
  OffscreenPlugin plugin(PlainLook(), kWidth, kHeight);
  plugin.DeliverFlat(255, 255, 300);
  for (int times = 0; times < 3; ++times) {
    plugin.Step(2);
    EXPECT_TRUE(plugin.IsLit(kWidth / 2, kHeight / 2 - 30));
    plugin.ShowAgain();
  }
  plugin.SetRect({100, 50, 300, 450});
  plugin.Step(2);
  EXPECT_TRUE(plugin.IsLit(250, 190));
  EXPECT_EQ(plugin.LitPixels(0, 0, kWidth, kHeight), plugin.LitPixels(50, 100, 450, 300));
}

} // namespace
} // namespace halvenor
