#include "audio/captured_records.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

namespace halvenor {
namespace {

using namespace std::chrono_literals;
using Clock = CapturedRecords::Clock;

/// A stream that brings 10 ms of sound at a time, whose latency is reported each time.
class Stream {
public:
  explicit Stream(CapturedRecords& records) : records_(records) {}
  /// Sound of that amplitude, heard `ahead` after it was taken.
  void Bring(Clock::duration ahead, float amplitude) {
    now += 10ms;
    records_.Observe(now + ahead);
    records_.Take(std::vector<float>(2 * 441, amplitude));
  }
  Clock::time_point now{100s};

private:
  CapturedRecords& records_;
};

// Two seconds of sound, asked for every 10 ms: each record comes when its first sound is heard, but
// for what its windows see after it.
TEST(CapturedRecords, AreDueWhenTheyAreHeard) {
  struct Case {
    std::chrono::milliseconds ahead, offset;
  };
  for (const auto& [ahead, offset] :
       {Case{0ms, 0ms}, Case{300ms, 0ms}, Case{0ms, 300ms}, Case{500ms, -300ms}}) {
    CapturedRecords records;
    Stream stream(records);
    std::vector<Clock::duration> due;
    std::uint64_t expected = 0;
    for (int i = 0; i < 200; ++i) {
      stream.Bring(ahead + (i % 3 - 1) * 5ms, 0.5F); // which is never exact
      while (const auto next = records.Next(stream.now, offset)) {
        EXPECT_EQ(next->frame, expected++ * kFramesPerRecord);
        EXPECT_EQ(next->peak, 0.5F);
        due.push_back(stream.now - Clock::time_point(100s + 10ms));
      }
    }
    ASSERT_GT(due.size(), 20U);
    for (std::size_t k = 0; k < due.size(); ++k) {
      const auto heard = static_cast<int>(k) * 50ms + ahead + offset;
      const auto known = static_cast<int>(k) * 50ms + 50ms; // not before it has come
      EXPECT_GE(due[k], std::max<Clock::duration>(heard, known) - 16ms) << k;
      EXPECT_LE(due[k], std::max<Clock::duration>(heard, known) + 16ms) << k;
    }
  }
}

TEST(CapturedRecords, WhatIsTooLateIsDroppedAndAJumpIsFollowed) {
  CapturedRecords records;
  Stream stream(records);
  for (int i = 0; i < 100; ++i)
    stream.Bring(0ms, 0.5F);
  int told = 0;
  while (records.Next(stream.now, 0ms))
    ++told;
  EXPECT_GE(told, 4);
  EXPECT_LE(told, 6) << "the last quarter second";
  // The server has found half a second more of latency: it is believed once it has lasted.
  for (int i = 0; i < 5; ++i)
    stream.Bring(500ms, 0.5F);
  EXPECT_TRUE(records.Next(stream.now, 0ms));
  for (int i = 0; i < 20; ++i)
    stream.Bring(500ms, 0.25F);
  EXPECT_FALSE(records.Next(stream.now, 0ms));
  stream.now += 500ms;
  EXPECT_TRUE(records.Next(stream.now, 0ms));
}

} // namespace
} // namespace halvenor
