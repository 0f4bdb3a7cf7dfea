#include "raster/matrix.h"

#include <cmath>
#include <cstddef>

namespace halvenor::raster {
namespace {

constexpr float kRadians = 3.14159265358979F / 180.0F;

struct Turn {
  float sine;
  float cosine;
};

Turn TurnBy(float degrees) {
  // A quarter turn has to map axes to axes.
  const float quarters = degrees / 90.0F;
  if (quarters == std::floor(quarters) && std::fabs(quarters) < 1e6F) {
    constexpr Turn kQuarters[] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};
    return kQuarters[static_cast<int>(quarters) & 3];
  }
  return {std::sin(degrees * kRadians), std::cos(degrees * kRadians)};
}

} // namespace

void Matrix::Translate(float x, float y, float z) {
  for (std::size_t row = 0; row < 4; ++row)
    m[12 + row] = m[row] * x + m[4 + row] * y + m[8 + row] * z + m[12 + row];
}

void Matrix::Scale(float x, float y, float z) {
  for (std::size_t row = 0; row < 4; ++row) {
    m[row] *= x;
    m[4 + row] *= y;
    m[8 + row] *= z;
  }
}

void Matrix::Rotate(float degrees, float x, float y, float z) {
  const float length = std::sqrt(x * x + y * y + z * z);
  if (!(length > 0.0F)) return;
  x /= length;
  y /= length;
  z /= length;
  const auto [s, c] = TurnBy(degrees);
  const float rest = 1.0F - c;
  Multiply({x * x * rest + c, y * x * rest + z * s, z * x * rest - y * s, 0, x * y * rest - z * s,
            y * y * rest + c, z * y * rest + x * s, 0, x * z * rest + y * s, y * z * rest - x * s,
            z * z * rest + c, 0, //
            0, 0, 0, 1});
}

std::array<float, 4> Matrix::Apply(float x, float y, float z) const {
  std::array<float, 4> result{};
  for (std::size_t row = 0; row < 4; ++row)
    result[row] = m[row] * x + m[4 + row] * y + m[8 + row] * z + m[12 + row];
  return result;
}

void Matrix::Multiply(const std::array<float, 16>& by) {
  const std::array<float, 16> before = m;
  for (std::size_t column = 0; column < 4; ++column)
    for (std::size_t row = 0; row < 4; ++row) {
      float sum = 0.0F;
      for (std::size_t i = 0; i < 4; ++i)
        sum += before[i * 4 + row] * by[column * 4 + i];
      m[column * 4 + row] = sum;
    }
}

} // namespace halvenor::raster
