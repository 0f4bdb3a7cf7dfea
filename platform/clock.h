// The one clock that `UpTime` and the render thread's sleep read.
//
// It is the machine's monotonic clock (the start), or a stepped clock that a host drives. With
// the stepped clock a sleep parks its thread; a step sets the time, wakes it and returns when it
// is parked again, so an offline host gets one frame per step at exactly the time it asked for. A
// live host may also hold the clock: sleepers stay parked and time stands still until it lets go.
//
// Times are nanoseconds. The plug-in's side calls `SleepFor`, `ThreadStarting`, `ThreadGone` and
// makes `KeepAwake`; the rest is the host's. All functions may be called on any thread; the host's
// side must be called outside any message to the plug-in.
#pragma once

#include "platform/export.h"

#include <cstdint>

namespace halvenor::clock {

/// Now.
HALVENOR_PLATFORM std::uint64_t Now();

/// Sleeps for `microseconds` (0 or less: only yields), or parks while the clock is stepped or
/// held. Returns at once while a `KeepAwake` lives.
HALVENOR_PLATFORM void SleepFor(std::int64_t microseconds);

/// `ThreadStarting`: a thread that will sleep here is about to be created. `ThreadGone`: it has
/// ended or could not be created. Steps wait only while such a thread exists.
HALVENOR_PLATFORM void ThreadStarting();
HALVENOR_PLATFORM void ThreadGone();

/// While it lives, nobody sleeps or parks, and all sleepers wake: for joining a thread.
class HALVENOR_PLATFORM KeepAwake {
public:
  KeepAwake();
  ~KeepAwake();
  KeepAwake(const KeepAwake&) = delete;
  KeepAwake& operator=(const KeepAwake&) = delete;
};

/// Makes the clock a stepped one that stands at `start` (above zero), or the machine's again. Both
/// end a hold. Sleepers of the real-time clock are parked from then on; parked threads are woken.
HALVENOR_PLATFORM void UseStepped(std::uint64_t start);
HALVENOR_PLATFORM void UseRealTime();

enum class StepResult {
  Frame,   ///< every thread is parked; after a `Step`: has come back from one turn
  NoFrame, ///< no thread exists that could park, a `KeepAwake` lives, or the clock is not stepped
};

/// Waits until every announced thread is parked. Like `Step`, returns when a thread ends instead.
HALVENOR_PLATFORM StepResult WaitUntilParked();

/// Waits until every thread is parked at the present time; then sets a stepped clock to `time` (not
/// before the present one), wakes the threads and waits until they are parked again.
HALVENOR_PLATFORM StepResult Step(std::uint64_t time);

/// Stops a real-time clock, and lets it run on from there; sleepers then sleep the rest of their
/// time. `Hold` does not wait for a frame that is being drawn. Repeated calls change nothing;
/// `Hold` does nothing to a stepped clock.
HALVENOR_PLATFORM void Hold();
HALVENOR_PLATFORM void Release();

} // namespace halvenor::clock
