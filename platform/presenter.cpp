#include "platform/presenter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace halvenor::agl {
namespace {

/// The overlap of a stretch of `length` at `at` with 0...`limit`.
struct Overlap {
  GLint begin;
  GLsizei length;
};

Overlap OverlapWith(GLsizei limit, GLint at, GLsizei length) {
  const std::int64_t begin = std::max<std::int64_t>(at, 0);
  const std::int64_t end = std::min<std::int64_t>(limit, std::int64_t{at} + length);
  if (end <= begin) return {0, 0};
  return {static_cast<GLint>(begin), static_cast<GLsizei>(end - begin)};
}

} // namespace

Fitted FitPicture(const Picture& picture, Size output) {
  if (picture.buffer == nullptr || picture.port.IsEmpty()) return {};
  const double scale = std::min(static_cast<double>(output.width) / picture.port.width,
                                static_cast<double>(output.height) / picture.port.height);
  const Size size = picture.buffer->GetSize();
  const auto scaled = [scale](GLint pixels) {
    return static_cast<GLint>(std::lround(pixels * scale));
  };
  return {{scaled(size.width), scaled(size.height)},
          (output.width - scaled(picture.port.width)) / 2 + scaled(picture.x),
          (output.height - scaled(picture.port.height)) / 2 + scaled(picture.y)};
}

VisiblePart ClipToPort(const Picture& picture) {
  if (picture.buffer == nullptr) return {};
  const Size size = picture.buffer->GetSize();
  const Overlap across = OverlapWith(picture.port.width, picture.x, size.width);
  const Overlap up = OverlapWith(picture.port.height, picture.y, size.height);
  if (across.length == 0 || up.length == 0) return {};
  return {across.begin - picture.x,
          up.begin - picture.y,
          across.begin,
          up.begin,
          {across.length, up.length}};
}

} // namespace halvenor::agl
