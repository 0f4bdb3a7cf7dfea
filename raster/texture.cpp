#include "raster/texture.h"

#include <algorithm>
#include <cstdint>

namespace halvenor::raster {
namespace {

Component FromByte(std::uint8_t byte) {
  return static_cast<Component>((byte * kOne + 127) / 255);
}

} // namespace

int Texture::Width() const {
  if (shown) return shown->width;
  return levels.empty() || !levels[0].image ? 0 : levels[0].image->Width();
}

int Texture::Height() const {
  if (shown) return shown->height;
  return levels.empty() || !levels[0].image ? 0 : levels[0].image->Height();
}

bool Texture::IsComplete() const {
  if (Width() == 0) return false;
  if (shown || !UsesMipmaps()) return true;
  int width = Width();
  int height = Height();
  for (std::size_t level = 0;; ++level) {
    if (level >= levels.size() || !levels[level].image) return false;
    const Image& image = *levels[level].image;
    if (image.Width() != width || image.Height() != height) return false;
    if (levels[level].opaque != levels[0].opaque) return false;
    if (width == 1 && height == 1) return true;
    width = std::max(1, width / 2);
    height = std::max(1, height / 2);
  }
}

std::shared_ptr<const Image> MakeLevel(const PixelSource& source, bool hasAlpha) {
  auto image = std::make_shared<Image>(source.width, source.height);
  if (!*image) return nullptr;
  const int components = source.format == GL_RGBA ? 4 : 3;
  const std::int64_t rowBytes =
      std::int64_t{source.rowLength > 0 ? source.rowLength : source.width} * components;
  const std::int64_t stride =
      (rowBytes + source.alignment - 1) / source.alignment * source.alignment;
  for (int y = 0; y < source.height; ++y) {
    const auto* bytes = static_cast<const std::uint8_t*>(source.pixels);
    if (bytes != nullptr) bytes += stride * y;
    for (int plane = 0; plane < kPlanes; ++plane) {
      Component* row = image->Row(y, plane);
      const bool isGiven = plane < components && (plane < 3 || hasAlpha);
      for (int x = 0; x < source.width; ++x)
        row[x] = !isGiven           ? static_cast<Component>(plane == 3 ? kOne : 0)
                 : bytes == nullptr ? Component{0}
                                    : FromByte(bytes[x * components + plane]);
      std::fill_n(row + source.width, kRowPadding / 2, row[source.width - 1]);
    }
  }
  return image;
}

} // namespace halvenor::raster
