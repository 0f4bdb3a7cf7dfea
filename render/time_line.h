// When frames are drawn and records delivered: nanoseconds from the start of the shown stretch.
#pragma once

#include "protocol/render_visual_data.h"

#include <cstdint>

namespace halvenor::render {

/// Frames a second as a fraction; both parts are above zero.
struct FrameRate {
  std::int64_t numerator;
  std::int64_t denominator;
};

/// `times` as many frames a second, in whatever terms.
constexpr FrameRate Times(FrameRate rate, std::int64_t times) {
  return {rate.numerator * times, rate.denominator};
}

inline constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
inline constexpr std::uint64_t kNanosecondsPerRecord = kDeliveryMilliseconds * 1'000'000ull;

/// The time of frame `index`, rounded down; exact for any length, since nothing is summed up.
constexpr std::uint64_t TimeOfFrame(std::uint64_t index, FrameRate rate) {
  __extension__ typedef unsigned __int128 Wide;
  return static_cast<std::uint64_t>(Wide{index} * kNanosecondsPerSecond *
                                    static_cast<std::uint64_t>(rate.denominator) /
                                    static_cast<std::uint64_t>(rate.numerator));
}

/// The record that is current at `time`.
constexpr std::uint64_t RecordAt(std::uint64_t time) {
  return time / kNanosecondsPerRecord;
}

} // namespace halvenor::render
