// The model-view matrix, by GL's rules: in floats, each step rounded.
#pragma once

#include <array>

namespace halvenor::raster {

/// Elements by column, as GL has them.
struct Matrix {
  std::array<float, 16> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

  void Translate(float x, float y, float z);
  void Scale(float x, float y, float z);
  /// Counterclockwise by `degrees` around (x, y, z); does nothing for an axis of no length.
  void Rotate(float degrees, float x, float y, float z);
  [[nodiscard]] std::array<float, 4> Apply(float x, float y, float z) const;

private:
  void Multiply(const std::array<float, 16>& by);
};

} // namespace halvenor::raster
