// How pictures are stored: planes of 16-bit numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace halvenor::raster {

/// A component: 0 is none, `kOne` all of it. Saturating adds of such numbers are GL's clamp.
using Component = std::int16_t;
constexpr int kOne = 32767;

/// Red, green, blue, alpha.
constexpr int kPlanes = 4;

/// Kernels work in blocks and may read and write up to this many components past the end of a row.
constexpr int kRowPadding = 64;
/// Before the first component of a row, and behind the last one, as many lie that continue it.
constexpr int kRowEdge = 16;
/// Rows begin at multiples of this many bytes.
constexpr std::size_t kRowAlignment = 64;

constexpr int kMaxSize = 16384; ///< GL_MAX_TEXTURE_SIZE and both of GL_MAX_VIEWPORT_DIMS

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

/// Rows of components, bottom row first; a row is its four planes, one after the other. Without
/// memory it is empty. What it holds when made is undefined.
///
/// A mark goes with each row: 1 where the colors (not alpha), edges included, are known to be 0, so
/// that nobody need read or clear them; else 0, as when made.
class Image {
public:
  Image() = default;
  /// Empty when there is no memory. Both sizes are 1 to `kMaxSize`.
  Image(int width, int height)
      : width_(width), height_(height), stride_((width + 3 * kRowPadding - 1) / 32 * 32) {
    const auto rows = static_cast<std::size_t>(height);
    const std::size_t bytes = static_cast<std::size_t>(Pitch()) * sizeof(Component) * rows;
    const std::size_t marks = (rows + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    memory_.reset(static_cast<Component*>(std::aligned_alloc(kRowAlignment, bytes + marks)));
    if (memory_) std::memset(BlackMarks(), 0, rows);
  }

  explicit operator bool() const { return memory_ != nullptr; }
  [[nodiscard]] int Width() const { return width_; }
  [[nodiscard]] int Height() const { return height_; }
  /// Components from one plane of a row to the next.
  [[nodiscard]] int Stride() const { return stride_; }
  /// Components from one row to the row above it.
  [[nodiscard]] std::ptrdiff_t Pitch() const { return std::ptrdiff_t{stride_} * kPlanes; }
  /// The first component of a plane of row `y`, counted from the bottom.
  [[nodiscard]] Component* Row(int y, int plane = 0) const {
    return memory_.get() + kRowPadding + Pitch() * y + std::ptrdiff_t{stride_} * plane;
  }
  /// The marks of all rows, from the bottom.
  [[nodiscard]] std::uint8_t* BlackMarks() const {
    return reinterpret_cast<std::uint8_t*>(memory_.get() + Pitch() * height_);
  }
  [[nodiscard]] bool IsBlack(int y) const { return BlackMarks()[y] != 0; }

private:
  int width_ = 0;
  int height_ = 0;
  int stride_ = 0;
  std::unique_ptr<Component, FreeMemory> memory_;
};

} // namespace halvenor::raster
