#include "platform/clock.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace halvenor::clock {
namespace {

using SteadyClock = std::chrono::steady_clock;
using std::chrono::nanoseconds;

// All of it under `mutex`. The counts are of announced threads; one inside `SleepFor` counts as
// sleeping until its time is over or `WakeAll` starts a new generation. So no sleeper misses a
// wake-up, and a thread that goes to sleep later does not take it for its own.
struct State {
  std::mutex mutex;
  std::condition_variable sleepers;
  std::condition_variable steppers; // the host's side, waiting for threads to park

  bool stepped = false;
  bool held = false;
  std::uint64_t steppedTime = 0;
  nanoseconds heldAt{0};  // the machine's time at which the present hold began
  nanoseconds heldFor{0}; // the sum of all holds that have ended

  int announced = 0;
  int sleeping = 0;
  int keepingAwake = 0;
  std::uint64_t generation = 0;
};

// Never destroyed: the program may end with a thread parked here.
State& TheState() {
  static State& state = *new State;
  return state;
}

nanoseconds MachineTime() {
  return SteadyClock::now().time_since_epoch();
}

// The real-time clock: the machine's, minus the time spent in holds.
nanoseconds RealNow(const State& state) {
  return (state.held ? state.heldAt : MachineTime()) - state.heldFor;
}

std::uint64_t NowIn(const State& state) {
  return state.stepped ? state.steppedTime : static_cast<std::uint64_t>(RealNow(state).count());
}

void WakeAll(State& state) {
  ++state.generation;
  state.sleeping = 0;
  state.sleepers.notify_all();
}

void EndHold(State& state) {
  if (!state.held) return;
  state.heldFor += MachineTime() - state.heldAt;
  state.held = false;
}

bool CanPark(const State& state) {
  return state.stepped && state.announced > 0 && state.keepingAwake == 0;
}

StepResult AwaitParked(State& state, std::unique_lock<std::mutex>& lock) {
  state.steppers.wait(lock, [&] { return !CanPark(state) || state.sleeping >= state.announced; });
  return CanPark(state) ? StepResult::Frame : StepResult::NoFrame;
}

nanoseconds DeadlineAfter(const State& state, std::int64_t microseconds) {
  constexpr std::int64_t kYear = 366LL * 24 * 3600 * 1000 * 1000; // keeps the sum from overflowing
  return RealNow(state) +
         std::chrono::microseconds(std::clamp<std::int64_t>(microseconds, 0, kYear));
}

} // namespace

std::uint64_t Now() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  return NowIn(state);
}

void SleepFor(std::int64_t microseconds) {
  State& state = TheState();
  std::unique_lock lock(state.mutex);
  if (state.keepingAwake > 0) return;
  if (microseconds <= 0 && !state.stepped && !state.held) {
    lock.unlock();
    std::this_thread::yield();
    return;
  }
  const nanoseconds deadline = DeadlineAfter(state, microseconds);
  const std::uint64_t generation = state.generation;
  ++state.sleeping;
  state.steppers.notify_all();
  while (generation == state.generation) {
    if (state.stepped || state.held) {
      state.sleepers.wait(lock);
    } else if (RealNow(state) < deadline) {
      // A hold or a stepped clock that begins now is noticed at the deadline.
      state.sleepers.wait_until(lock, SteadyClock::time_point(deadline + state.heldFor));
    } else {
      --state.sleeping;
      return;
    }
  }
}

void ThreadStarting() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  ++state.announced;
}

void ThreadGone() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  --state.announced;
  state.steppers.notify_all();
}

KeepAwake::KeepAwake() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  ++state.keepingAwake;
  WakeAll(state);
  state.steppers.notify_all();
}

KeepAwake::~KeepAwake() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  --state.keepingAwake;
}

void UseStepped(std::uint64_t start) {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  EndHold(state);
  state.stepped = true;
  state.steppedTime = start;
}

void UseRealTime() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  EndHold(state);
  state.stepped = false;
  WakeAll(state);
  state.steppers.notify_all();
}

StepResult WaitUntilParked() {
  State& state = TheState();
  std::unique_lock lock(state.mutex);
  return AwaitParked(state, lock);
}

StepResult Step(std::uint64_t time) {
  State& state = TheState();
  std::unique_lock lock(state.mutex);
  // A thread that is still drawing finishes at the old time: its next frame is the one asked for.
  const StepResult before = AwaitParked(state, lock);
  if (!state.stepped) return StepResult::NoFrame;
  state.steppedTime = std::max(state.steppedTime, time);
  if (before == StepResult::NoFrame) return before;
  WakeAll(state);
  return AwaitParked(state, lock);
}

void Hold() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  if (state.stepped || state.held) return;
  state.heldAt = MachineTime();
  state.held = true;
}

void Release() {
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  EndHold(state);
  state.sleepers.notify_all();
}

} // namespace halvenor::clock
