// The random numbers of the autopilot.
#pragma once

#include <cstdint>

namespace halvenor {

/// The C library's sequence as a program gets it that never seeds it, from a generator of the
/// plug-in's own: other code in the process cannot disturb it, and a run repeats. Needs the
/// plug-in's lock.
class RandomSource {
public:
  /// The next number, 0 to 2147483647.
  static std::int32_t Next();

  /// The next number scaled to 0..1; rounding can make it exactly 1.
  static float Unit();

  /// Whether the next number falls below `probability` of the whole range.
  static bool Chance(double probability);
};

} // namespace halvenor
