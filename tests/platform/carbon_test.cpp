#include "platform/carbon.h"
#include "platform/debug_log.h"
#include "platform/guard.h"
#include "platform/ports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <future>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace halvenor {
namespace {

using testing::Pointwise;

MATCHER_P(DistanceUpTo, most, "") {
  return std::abs(std::get<0>(arg) - std::get<1>(arg)) <= most;
}

TEST(Carbon, IntervalsAreNegatedMicrosecondsWhileTheyFit) {
  constexpr std::uint64_t kStart = 1'000'000'000;
  constexpr std::uint64_t kMillisecond = 1'000'000;
  struct {
    std::uint64_t nanoseconds;
    Duration duration;
  } const cases[] = {
      {0, 0},
      {1, -1},
      {1000, -1},
      {1001, -2},
      {16'666'666, -16'667},
      {2'147'483'647'000, -2'147'483'647},
      {2'147'483'647'001, 2'147'483},
      {2'147'483'647 * kMillisecond, 2'147'483'647},
      {2'147'483'648 * kMillisecond, 2'147'483'647},
      {std::uint64_t{1} << 63, 2'147'483'647},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(AbsoluteDeltaToDuration(kStart + c.nanoseconds, kStart), c.duration) << c.nanoseconds;
  }
  EXPECT_EQ(AbsoluteDeltaToDuration(kStart, kStart + 5 * kMillisecond), 0);
}

TEST(Carbon, BlocksAreZeroAndAbsurdSizesAreRefused) {
  for (int times = 0; times < 2; ++times) { // the second may get the memory of the first
    auto* block = static_cast<unsigned char*>(NewPtrClear(100'000));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::count(block, block + 100'000, 0), 100'000);
    std::memset(block, 0xff, 100'000);
    DisposePtr(block);
  }
  DisposePtr(nullptr);
  void* empty = NewPtrClear(0);
  EXPECT_NE(empty, nullptr);
  DisposePtr(empty);
  EXPECT_EQ(NewPtrClear(-1), nullptr);
}

HSLColor ToHsl(RGBColor rgb) {
  HSLColor hsl;
  RGB2HSL(&rgb, &hsl);
  return hsl;
}

RGBColor ToRgb(HSLColor hsl) {
  RGBColor rgb;
  HSL2RGB(&hsl, &rgb);
  return rgb;
}

std::vector<int> Values(RGBColor c) {
  return {c.red, c.green, c.blue};
}
std::vector<int> Values(HSLColor c) {
  return {c.hue, c.saturation, c.lightness};
}

auto IsNear(RGBColor c) {
  return Pointwise(DistanceUpTo(4), Values(c));
}

TEST(Carbon, ColorsOfTheHueCircle) {
  struct {
    RGBColor rgb;
    HSLColor hsl;
  } const cases[] = {
      {{0, 0, 0}, {0, 0, 0}},
      {{40000, 40000, 40000}, {0, 0, 40000}},
      {{65535, 65535, 65535}, {0, 0, 65535}},
      {{65535, 0, 0}, {0, 65535, 32768}},
      {{65535, 65535, 0}, {10923, 65535, 32768}},
      {{0, 65535, 0}, {21845, 65535, 32768}},
      {{0, 65535, 65535}, {32768, 65535, 32768}},
      {{0, 0, 65535}, {43691, 65535, 32768}},
      {{65535, 0, 65535}, {54613, 65535, 32768}},
      {{40000, 0, 0}, {0, 65535, 20000}},
      {{20000, 10000, 10000}, {0, 21845, 15000}},
      {{65535, 65535, 65534}, {10923, 65535, 65535}},
      {{65535, 0, 1}, {0, 65535, 32768}}, // a hue that rounds to a full turn
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Values(ToHsl(c.rgb)), Values(c.hsl)) << testing::PrintToString(Values(c.rgb));
    EXPECT_THAT(Values(ToRgb(c.hsl)), IsNear(c.rgb));
  }
}

TEST(Carbon, ARoundTripStaysNearAndRepeatingItDoesNotDrift) {
  std::minstd_rand random;
  for (int i = 0; i < 20'000; ++i) {
    // All colors, and those next to gray, black and white, where rounding is hardest.
    const unsigned spread = 1U << (1 + i % 16);
    const auto base = static_cast<unsigned>(random() % (65536 - std::min(spread, 65535U)));
    const auto component = [&] {
      return static_cast<std::uint16_t>(std::min<unsigned long>(base + random() % spread, 65535));
    };
    const RGBColor color = {component(), component(), component()};
    const RGBColor once = ToRgb(ToHsl(color));
    ASSERT_EQ(Values(ToRgb(ToHsl(once))), Values(once)) << testing::PrintToString(Values(color));
    ASSERT_THAT(Values(once), IsNear(color));
  }
}

TEST(Ports, ANullPortIsEmpty) {
  Rect bounds = {1, 2, 3, 4};
  GetPortBounds(nullptr, &bounds);
  EXPECT_EQ(bounds.bottom + bounds.right, 0);
}

TEST(Ports, AnAlertIsTheHostsElseTheBellOfATerminal) {
  static std::vector<int> alerts;
  const auto inFile = [] {
    testing::internal::CaptureStderr();
    SysBeep(20);
    return testing::internal::GetCapturedStderr();
  };
  SetAlertSound([](int ticks) { alerts.push_back(ticks); });
  EXPECT_EQ(inFile(), "");
  EXPECT_THAT(alerts, testing::ElementsAre(20));
  SetAlertSound(nullptr);
  EXPECT_EQ(inFile(), "");
  EXPECT_EQ(alerts.size(), 1U);

  const int master = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_EQ(grantpt(master), 0);
  ASSERT_EQ(unlockpt(master), 0);
  const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY);
  const int standardError = dup(STDERR_FILENO);
  dup2(terminal, STDERR_FILENO);
  SysBeep(20);
  dup2(standardError, STDERR_FILENO);
  char heard = 0;
  EXPECT_EQ(read(master, &heard, 1), 1);
  EXPECT_EQ(heard, '\a');
  for (const int file : {master, terminal, standardError})
    close(file);
}

TEST(DebugLog, OneLinePerMessageWithTheProgramsName) {
  testing::internal::CaptureStderr();
  DebugStr(reinterpret_cast<ConstStr255Param>("\x06 A\nB\x1b\xe9 beyond the length"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            std::string(program_invocation_short_name) + ": A B \uFFFD\n");
}

TEST(DebugLog, AReceiverTakesOverAndIsDoneWhenItIsReplaced) {
  struct Received {
    std::promise<void> entered;
    bool left = false;
    std::string message;
  } received;
  debug_log::SetReceiver(
      [](void* refCon, std::string_view message) {
        auto& here = *static_cast<Received*>(refCon);
        here.message = message;
        here.entered.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // the receiver is replaced now
        here.left = true;
      },
      &received);
  std::thread writer([] { DebugStr(reinterpret_cast<ConstStr255Param>("\x02\xe9\n")); });
  received.entered.get_future().wait();
  debug_log::SetReceiver(nullptr, nullptr);
  EXPECT_TRUE(received.left);
  EXPECT_EQ(received.message, "\xe9\n") << "bytes as they were written";
  writer.join();
  testing::internal::CaptureStderr();
  DebugStr(reinterpret_cast<ConstStr255Param>("\x01!"));
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::EndsWith(": !\n"));
}

TEST(RecordGuardTest, WithoutAPluginThereIsNoRecord) {
  EXPECT_EQ(RecordGuard().Record(), nullptr);
}

} // namespace
} // namespace halvenor
