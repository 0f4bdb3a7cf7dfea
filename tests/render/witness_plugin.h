// What the witness plug-in's frames say.
#pragma once

#include <cstddef>
#include <cstdint>

namespace halvenor {

/// The first bytes of each frame.
struct Testimony {
  std::uint64_t time;    ///< of this frame, on the plug-in's clock
  std::uint64_t shownAt; ///< when 'show' came
  std::uint32_t deliveries;
  std::uint32_t lastMark; ///< the first waveform byte of the last record
};

/// Every other byte of a frame, by its place in memory, where the bottom row comes first.
constexpr std::uint8_t WitnessPixel(std::size_t place) {
  return static_cast<std::uint8_t>(place * 7 / 3);
}

} // namespace halvenor
