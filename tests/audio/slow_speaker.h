// An audio device for tests: it plays at the right speed, but what it is given is heard late, as it
// honestly reports.
#pragma once

#include <chrono>
#include <optional>

namespace halvenor::slow_speaker {

using Clock = std::chrono::steady_clock;

inline constexpr std::chrono::milliseconds kLatency{150};

/// Makes the device available as the GStreamer element "slowspeaker". Once per process.
void Register();

/// Forgets what has been heard.
void Reset();

/// When the first sound louder than silence since `Reset` is or was heard.
std::optional<Clock::time_point> FirstHeard();

/// The largest value of what was written last.
float Loudest();

/// From now on every write fails, as when the device is unplugged.
void Unplug();

} // namespace halvenor::slow_speaker
