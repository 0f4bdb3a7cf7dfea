#include "raster/mipmaps.h"

#include <GL/glu.h>

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace halvenor::raster {
namespace {

constexpr int kNoError = 0;

// The power of two that GLU takes: the larger one from three quarters of it on.
int NearestPower(int size) {
  int power = 1;
  for (; size != 1; size /= 2, power *= 2) {
    if (size == 3) return power * 4;
  }
  return power;
}

// The part of a line of `in` pixels that pixel `index` of a line of `out` covers. A unit is the
// `out`th part of a pixel of the first line.
struct Span {
  Span(int index, int in, int out)
      : begin(std::int64_t{index} * in), end(begin + in), unitsPerPixel(out),
        first(static_cast<int>(begin / out)), last(static_cast<int>((end - 1) / out)) {}

  [[nodiscard]] std::uint64_t Covered(int pixel) const {
    const std::int64_t left = std::max(begin, std::int64_t{pixel} * unitsPerPixel);
    const std::int64_t right = std::min(end, std::int64_t{pixel + 1} * unitsPerPixel);
    return static_cast<std::uint64_t>(right - left);
  }

  std::int64_t begin;
  std::int64_t end;
  int unitsPerPixel;
  int first;
  int last;
};

struct Image {
  int width;
  int height;
  int channels;
  std::size_t stride;
  const std::uint8_t* pixels;

  [[nodiscard]] const std::uint8_t* Row(int y) const {
    return pixels + static_cast<std::size_t>(y) * stride;
  }
};

MipmapLevel MakeLevel(int width, int height, int channels) {
  return {
      width, height,
      std::vector<std::uint8_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                                static_cast<std::size_t>(channels))};
}

// Adds a row, shrunk or stretched to `sums.size()` values, with a weight.
void AddRow(const Image& image, int y, std::uint64_t weight, std::vector<std::uint64_t>& sums) {
  const std::uint8_t* row = image.Row(y);
  const int width = static_cast<int>(sums.size()) / image.channels;
  auto sum = sums.begin();
  for (int x = 0; x < width; ++x) {
    const Span columns(x, image.width, width);
    for (int channel = 0; channel < image.channels; ++channel, ++sum) {
      for (int i = columns.first; i <= columns.last; ++i)
        *sum += row[i * image.channels + channel] * columns.Covered(i) * weight;
    }
  }
}

// Every pixel is the mean of the area that it covers, cut to an integer as in GLU.
MipmapLevel BoxFiltered(const Image& image, int width, int height) {
  MipmapLevel level = MakeLevel(width, height, image.channels);
  const std::uint64_t area =
      static_cast<std::uint64_t>(image.width) * static_cast<std::uint64_t>(image.height);
  std::vector<std::uint64_t> sums(static_cast<std::size_t>(width * image.channels));
  auto target = level.pixels.begin();
  for (int y = 0; y < height; ++y) {
    std::fill(sums.begin(), sums.end(), 0);
    const Span rows(y, image.height, height);
    for (int i = rows.first; i <= rows.last; ++i)
      AddRow(image, i, rows.Covered(i), sums);
    for (const std::uint64_t sum : sums)
      *target++ = static_cast<std::uint8_t>(sum / area);
  }
  return level;
}

// GLU rounds the mean of four pixels and cuts that of two.
MipmapLevel Halved(const Image& image) {
  MipmapLevel level =
      MakeLevel(std::max(image.width / 2, 1), std::max(image.height / 2, 1), image.channels);
  const int right = image.width > 1 ? image.channels : 0;
  const int below = image.height > 1 ? 1 : 0;
  const int rounding = right != 0 && below != 0 ? 2 : 0;
  auto target = level.pixels.begin();
  for (int y = 0; y < level.height; ++y) {
    const std::uint8_t* upper = image.Row(y * (1 + below));
    const std::uint8_t* lower = image.Row(y * (1 + below) + below);
    for (int x = 0; x < level.width; ++x) {
      for (int channel = 0; channel < image.channels; ++channel) {
        const int i = x * (image.channels + right) + channel;
        const int sum = upper[i] + upper[i + right] + lower[i] + lower[i + right];
        *target++ = static_cast<std::uint8_t>((sum + rounding) / 4);
      }
    }
  }
  return level;
}

MipmapLevel FirstLevel(const Image& image, int maxSize) {
  int width = NearestPower(image.width);
  int height = NearestPower(image.height);
  while (width > maxSize || height > maxSize) {
    width = std::max(width / 2, 1);
    height = std::max(height / 2, 1);
  }
  if (image.width == width * 2 && image.height == height * 2) return Halved(image);
  return BoxFiltered(image, width, height);
}

} // namespace

GLint BuildMipmaps(const MipmapSource& source, std::vector<MipmapLevel>& levels) {
  levels.clear();
  if (source.type != GL_UNSIGNED_BYTE) return GLU_INVALID_ENUM;
  if (source.format != GL_RGB && source.format != GL_RGBA) return GLU_INVALID_ENUM;
  if (source.width < 1 || source.height < 1 || source.maxSize < 1) return GLU_INVALID_VALUE;
  const int channels = source.format == GL_RGB ? 3 : 4;
  const auto alignment = static_cast<std::size_t>(source.alignment);
  const std::size_t size =
      static_cast<std::size_t>(source.width) * static_cast<std::size_t>(channels);
  const Image image{source.width, source.height, channels,
                    (size + alignment - 1) / alignment * alignment,
                    static_cast<const std::uint8_t*>(source.pixels)};
  try {
    levels.push_back(FirstLevel(image, source.maxSize));
    while (levels.back().width > 1 || levels.back().height > 1) {
      const MipmapLevel& last = levels.back();
      levels.push_back(
          Halved({last.width, last.height, channels,
                  static_cast<std::size_t>(last.width * channels), last.pixels.data()}));
    }
  } catch (const std::bad_alloc&) {
    levels.clear();
    return GLU_OUT_OF_MEMORY;
  }
  return kNoError;
}

bool HasExtension(const char* name, const char* extensions) {
  if (name == nullptr || extensions == nullptr) return false;
  const std::string_view wanted = name;
  std::string_view list = extensions;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(' '), list.size());
    if (end != 0 && list.substr(0, end) == wanted) return true;
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return false;
}

} // namespace halvenor::raster
