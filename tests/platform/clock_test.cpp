#include "platform/clock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace halvenor::clock {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr std::int64_t kHalfAnHour = 1800LL * 1000 * 1000;

// Draws and sleeps like the render thread. A frame is the time at which it was drawn.
class Drawer {
public:
  explicit Drawer(std::int64_t pause, std::function<void()> draw = {})
      : pause_(pause), draw_(std::move(draw)) {
    ThreadStarting();
    thread_ = std::thread([this] { Run(); });
  }

  ~Drawer() { Stop(); }

  void EndAfterThisFrame() { running_ = false; }

  void Stop() {
    if (!thread_.joinable()) return;
    running_ = false;
    const KeepAwake awake;
    thread_.join();
  }

  std::vector<std::uint64_t> Frames() {
    const std::lock_guard lock(mutex_);
    return frames_;
  }

private:
  void Run() {
    while (running_) {
      {
        const std::lock_guard lock(mutex_);
        frames_.push_back(Now());
      }
      if (draw_) draw_();
      SleepFor(pause_);
    }
    ThreadGone();
  }

  std::int64_t pause_;
  std::function<void()> draw_;
  std::atomic<bool> running_{true};
  std::mutex mutex_;
  std::vector<std::uint64_t> frames_;
  std::thread thread_;
};

class ClockTest : public testing::Test {
protected:
  void TearDown() override { UseRealTime(); }
};

TEST_F(ClockTest, EachStepIsOneTurnAtItsTimeWhateverTheSleep) {
  for (const std::int64_t pause :
       {std::int64_t{0}, std::int64_t{-5}, std::int64_t{10000}, kHalfAnHour,
        std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
    UseStepped(1000);
    Drawer first(pause);
    Drawer second(pause);
    ASSERT_EQ(WaitUntilParked(), StepResult::Frame);
    std::vector<std::uint64_t> times = {1000};
    for (std::uint64_t time = 2000; time < 52000; time += 1000) {
      ASSERT_EQ(Step(time), StepResult::Frame);
      times.push_back(time);
      ASSERT_EQ(first.Frames().size(), times.size()) << "a step returned early or went on twice";
      ASSERT_EQ(second.Frames().size(), times.size());
    }
    EXPECT_THAT(first.Frames(), ElementsAreArray(times)) << pause;
    EXPECT_THAT(second.Frames(), ElementsAreArray(times)) << pause;
  }
}

TEST_F(ClockTest, AStepLetsTheFrameInHandEndAtItsOwnTime) {
  UseStepped(1000);
  std::promise<void> drawing;
  std::vector<std::uint64_t> ends;
  Drawer drawer(0, [&] {
    if (ends.empty()) {
      drawing.set_value();
      std::this_thread::sleep_for(std::chrono::milliseconds(20)); // the step comes meanwhile
    }
    ends.push_back(Now());
  });
  drawing.get_future().wait();
  EXPECT_EQ(Step(2000), StepResult::Frame);
  drawer.Stop();
  ASSERT_GE(ends.size(), 2U);
  EXPECT_EQ(ends[0], 1000U);
  EXPECT_EQ(ends[1], 2000U);
}

TEST_F(ClockTest, AStepSaysNoFrameInsteadOfWaitingForEver) {
  EXPECT_EQ(Step(1), StepResult::NoFrame) << "real time";
  EXPECT_EQ(WaitUntilParked(), StepResult::NoFrame) << "real time";
  SleepFor(1); // a sleep that is over no longer counts as a parked thread
  UseStepped(1000);
  EXPECT_EQ(WaitUntilParked(), StepResult::NoFrame) << "no thread";
  EXPECT_EQ(Step(2000), StepResult::NoFrame) << "no thread";
  Step(1500);
  EXPECT_EQ(Now(), 2000U) << "time never steps back";

  { // Nobody parks while somebody keeps all awake.
    ThreadStarting();
    std::future<StepResult> wait = std::async(std::launch::async, [] { return WaitUntilParked(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const KeepAwake awake;
    EXPECT_EQ(wait.get(), StepResult::NoFrame);
    EXPECT_EQ(Step(3000), StepResult::NoFrame);
    ThreadGone();
  }
  { // The thread ends while the step waits for it.
    Drawer* self = nullptr;
    std::promise<void> known;
    Drawer drawer(0, [&, turns = 0]() mutable {
      if (turns++ == 0) known.get_future().wait();
      if (Now() > 3000) self->EndAfterThisFrame();
    });
    self = &drawer;
    known.set_value();
    ASSERT_EQ(WaitUntilParked(), StepResult::Frame);
    EXPECT_EQ(Step(4000), StepResult::Frame) << "the last turn ends in a sleep";
    EXPECT_EQ(Step(5000), StepResult::NoFrame) << "woken, the thread ends";
  }
}

TEST_F(ClockTest, KeepAwakeEndsEverySleepAndAllowsNone) {
  std::atomic<bool> slept = false;
  const auto sleeper = [&slept] {
    slept = false;
    ThreadStarting();
    return std::thread([&slept] {
      SleepFor(kHalfAnHour);
      slept = true;
      ThreadGone();
    });
  };
  { // Parked; and awake again although nobody keeps it so by the time it looks.
    UseStepped(1000);
    std::thread thread = sleeper();
    ASSERT_EQ(WaitUntilParked(), StepResult::Frame);
    EXPECT_FALSE(slept);
    { const KeepAwake awake; }
    thread.join();
    UseRealTime();
  }
  for (const bool held : {false, true}) { // most likely asleep, or else about to be
    if (held) Hold();
    std::thread thread = sleeper();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(slept);
    const KeepAwake awake;
    thread.join();
  }
  const KeepAwake awake;
  SleepFor(kHalfAnHour);
  UseStepped(1000);
  SleepFor(kHalfAnHour);
}

TEST_F(ClockTest, ChangingTheClockParksSleepersAndWakesTheParked) {
  Drawer drawer(kHalfAnHour);
  while (drawer.Frames().empty())
    std::this_thread::yield();
  UseStepped(1000);
  ASSERT_EQ(WaitUntilParked(), StepResult::Frame);
  ASSERT_EQ(Step(2000), StepResult::Frame);
  EXPECT_EQ(drawer.Frames().back(), 2000U);
  UseRealTime();
  while (drawer.Frames().size() < 3)
    std::this_thread::yield(); // hangs if it stayed parked
  EXPECT_GT(drawer.Frames().back(), 2000U);
}

TEST_F(ClockTest, RealSleepsLastAsLongAsAskedFor) {
  for (const std::int64_t pause : {1, 500, 3000}) {
    const std::uint64_t before = Now();
    SleepFor(pause);
    EXPECT_GE(Now() - before, static_cast<std::uint64_t>(pause) * 1000);
  }
}

TEST_F(ClockTest, AHoldStopsTimeAndSleepersWithoutALeapAfterwards) {
  using std::chrono::steady_clock;
  Drawer drawer(1);
  while (drawer.Frames().size() < 2)
    std::this_thread::yield();
  Hold();
  const std::uint64_t held = Now();
  std::this_thread::sleep_for(std::chrono::milliseconds(30)); // a frame in hand may still end
  const std::size_t frames = drawer.Frames().size();
  Hold();
  const std::clock_t processor = std::clock();
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_LT(std::clock() - processor, CLOCKS_PER_SEC / 200) << "sleepers spin";
  EXPECT_EQ(Now(), held);
  EXPECT_LE(drawer.Frames().size(), frames + 1);

  const auto before = steady_clock::now();
  Release();
  Release();
  const std::uint64_t after = Now();
  EXPECT_LE(std::chrono::nanoseconds(after - held), steady_clock::now() - before);
  while (drawer.Frames().size() < frames + 3)
    std::this_thread::yield(); // hangs if still held
}

TEST_F(ClockTest, NoWakeUpIsLostWhenStepsAndStopsMeet) {
  for (int round = 0; round < 200; ++round) {
    UseStepped(1000);
    auto drawer = std::make_unique<Drawer>(kHalfAnHour);
    std::thread stepper([] {
      std::uint64_t time = 1000;
      while (Step(++time) == StepResult::Frame) {
      }
    });
    if (round % 2 == 0) std::this_thread::yield();
    drawer.reset();
    stepper.join();
  }
}

} // namespace
} // namespace halvenor::clock
