// Sequences of the plug-in's GL calls, made of choices, for one or more players at once.
#pragma once

#include "tests/raster/gl_player.h"

#include <span>
#include <string>

namespace halvenor {

/// Where a sequence takes its choices from: a seeded generator, or the bytes of a fuzzer.
class Choices {
public:
  virtual ~Choices() = default;
  /// 0 to `limit` - 1
  virtual unsigned Below(unsigned limit) = 0;
  [[nodiscard]] virtual bool AreLeft() const = 0;

  float Between(float low, float high) {
    constexpr unsigned kSteps = 4096;
    return low + (high - low) * static_cast<float>(Below(kSteps)) / kSteps;
  }
};

/// Plays one sequence on all players, up to the end of the choices or `steps` steps. `hostile`:
/// with numbers that nobody can draw. Returns the first call after which the players had different
/// errors, with these; empty when there was none.
std::string PlaySequence(Choices& choices, std::span<GlPlayer* const> players, int steps,
                         bool hostile);

} // namespace halvenor
