// What the witness plug-in's frames say.
#pragma once

#include <cstdint>

namespace halvenor {

/// The first bytes of each frame.
struct Testimony {
  std::uint64_t time;    ///< of this frame, on the plug-in's clock
  std::uint64_t shownAt; ///< when 'show' came
  std::uint32_t deliveries;
  std::uint32_t lastMark; ///< the first waveform byte of the last record
};

} // namespace halvenor
