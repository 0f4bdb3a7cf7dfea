// Runs programs in scalar floats without contraction: the same bytes on every machine.
#pragma once

#include "raster/programs/program.h"

#include <span>

namespace halvenor::raster {

/// The result of a vertex program for one vertex. Outputs that the program does not write are
/// (0, 0, 0, 1); with `positionInvariant` the position is the caller's to compute.
Attributes RunVertexProgram(const Program& program, const ProgramParameters& parameters,
                            const Attributes& vertex);

/// The texture that a fragment program reads.
class Sampler {
public:
  virtual ~Sampler() = default;
  /// Fills `colors` with the texture's colors at the coordinates `at` (first and second component).
  /// Both have the same size, at most `kRowBatch`.
  virtual void Sample(std::span<const Vec4> at, std::span<Vec4> colors) const = 0;
};
constexpr int kRowBatch = 64;

/// An attribute along a row of fragments: `start` at the first, `step` more at each next one.
struct Varying {
  Vec4 start{};
  Vec4 step{};
};
using Varyings = std::array<Varying, kNumAttributes>;

/// Runs a fragment program for `colors.size()` fragments from left to right and stores
/// result.color, clamped to 0..1 (NaN becomes 0). What the program does not write is 0.
void RunFragmentRow(const Program& program, const ProgramParameters& parameters,
                    const Varyings& varyings, const Sampler& sampler, std::span<Vec4> colors);

} // namespace halvenor::raster
