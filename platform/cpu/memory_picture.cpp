#include "platform/cpu/memory_picture.h"

#include "platform/agl.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

namespace halvenor::agl {
namespace {

/// RGBA, top row first.
class MemoryPicture final : public Buffer {
public:
  explicit MemoryPicture(Size size)
      : Buffer(size),
        bytes_(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4) {}

  GLenum ShowInBoundTexture() override { return AGL_NO_BUFFER; }

  void Read(GLint x, GLint y, Size size, const Pixels& pixels) override {
    const GLint top = GetSize().height - y - size.height;
    for (GLint row = 0; row < size.height; ++row) {
      const std::uint8_t* from = Row(top + row) + std::ptrdiff_t{4} * x;
      std::uint8_t* to = pixels.topRow + pixels.stride * row;
      std::memcpy(to, from, static_cast<std::size_t>(size.width) * 4);
      if (pixels.order == Pixels::Order::Xrgb)
        for (GLsizei i = 0; i < size.width; ++i, to += 4)
          std::swap(to[0], to[2]);
    }
  }

  [[nodiscard]] std::uint8_t* Row(GLint row) { return bytes_.data() + Stride() * row; }
  [[nodiscard]] std::ptrdiff_t Stride() const { return std::ptrdiff_t{4} * GetSize().width; }

private:
  std::vector<std::uint8_t> bytes_;
};

/// Where a pixel of a scaled row lies between two pixels of the row that it is scaled from.
struct Between {
  int first;
  int second;
  int weight; ///< of the second, in 256ths
};

Between Place(int pixel, int length, int sourceLength) {
  const double at = (pixel + 0.5) * sourceLength / length - 0.5;
  const double clamped = std::clamp(at, 0.0, sourceLength - 1.0);
  const int first = static_cast<int>(clamped);
  return {first, std::min(first + 1, sourceLength - 1), static_cast<int>((clamped - first) * 256)};
}

int Mix(int first, int second, int weight) {
  return first * (256 - weight) + second * weight;
}

void ScaleInto(MemoryPicture& to, MemoryPicture& from) {
  const Size size = to.GetSize();
  const Size source = from.GetSize();
  std::vector<Between> across;
  across.reserve(static_cast<std::size_t>(size.width));
  for (int x = 0; x < size.width; ++x)
    across.push_back(Place(x, size.width, source.width));
  for (int y = 0; y < size.height; ++y) {
    const Between up = Place(y, size.height, source.height);
    const std::uint8_t* const upper = from.Row(up.first);
    const std::uint8_t* const lower = from.Row(up.second);
    std::uint8_t* pixel = to.Row(y);
    for (const Between& place : across) {
      const int first = place.first * 4;
      const int second = place.second * 4;
      for (int channel = 0; channel < 4; ++channel) {
        const int above = Mix(upper[first + channel], upper[second + channel], place.weight);
        const int below = Mix(lower[first + channel], lower[second + channel], place.weight);
        *pixel++ = static_cast<std::uint8_t>((Mix(above, below, up.weight) + 0x8000) >> 16);
      }
    }
  }
}

} // namespace

std::unique_ptr<Buffer> ScaledPicture(const Picture& picture, Size size) {
  if (picture.buffer == nullptr || size.IsEmpty()) return nullptr;
  try {
    const Size whole = picture.buffer->GetSize();
    MemoryPicture unscaled(whole);
    auto scaled = std::make_unique<MemoryPicture>(size);
    picture.buffer->Read(0, 0, whole, {unscaled.Row(0), unscaled.Stride()});
    ScaleInto(*scaled, unscaled);
    return scaled;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

} // namespace halvenor::agl
