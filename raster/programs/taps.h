// A pair of programs as a weighted sum of lookups at constant offsets, followed by a polynomial of
// each channel by itself: what a fixed-point kernel can draw without interpreting anything.
#pragma once

#include "raster/programs/program.h"

#include <optional>

namespace halvenor::raster {

constexpr int kMaxTaps = kMaxTextureCoords;
constexpr int kMaxDegree = 3;

/// A lookup at the vertex's own texture coordinates of set 0 (the attribute, as the vertex program
/// is given it), interpolated, plus the offset.
struct Tap {
  float s = 0.0F; ///< in texture coordinates
  float t = 0.0F;
  float weight = 0.0F; ///< 0..1
};

/// Coefficients by ascending power, all of them in 0..1, their sum at most 1.
using Polynomial = std::array<float, kMaxDegree + 1>;

/// result[c] = polynomial[c](sum of weight x lookup[c]). With lookups in 0..1 each sum, and each
/// step of a polynomial in Horner's order, stays in 0..1 (up to the rounding of a float).
struct Taps {
  int count = 0; ///< 0: every channel is constant
  std::array<Tap, kMaxTaps> taps{};
  std::array<Polynomial, 4> polynomial{}; ///< red, green, blue, alpha
};

/// What is known when a primitive is drawn.
struct TapsInput {
  ProgramParameters vertexParameters;
  ProgramParameters fragmentParameters;
  Vec4 color{}; ///< of the fragments, the same for all; 0..1. Counts only if the program reads it.
};

/// The value of `Program::isTapsForm`, from the program's instructions.
bool HasTapsForm(const Program& program);

/// The taps of a fragment program after a vertex program (null: fixed function, which hands texture
/// coordinate set 0 on). None when `fragment.isTapsForm` is false, or when the vertex program hands
/// on anything but its coordinates with constants times parameters added; then `RunFragmentRow`
/// has to run. Costs about a microsecond; which it is depends on the texts alone.
std::optional<Taps> FindTaps(const Program* vertex, const Program& fragment,
                             const TapsInput& input);

} // namespace halvenor::raster
