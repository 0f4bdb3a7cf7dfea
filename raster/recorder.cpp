#include "raster/recorder.h"

#include <algorithm>
#include <cmath>

namespace halvenor::raster {
namespace {

// Segments of a version: 16 MB.
constexpr std::size_t kMostCost = std::size_t{1} << 20;

PixelVertex ToPixels(State& state, const Vertex& vertex) {
  const auto position = state.Top().Apply(vertex.x, vertex.y, vertex.z);
  const auto at = [&state](float unit, std::size_t axis) {
    const auto half = static_cast<float>(state.viewport[axis + 2]) * 0.5F;
    return unit * half + half + static_cast<float>(state.viewport[axis]);
  };
  return {at(position[0], 0), at(position[1], 1), vertex.color, vertex.s, vertex.t};
}

bool IsDrawable(const PixelVertex& vertex) {
  return std::isfinite(vertex.x) && std::isfinite(vertex.y);
}

bool IsUpright(const std::array<PixelVertex, 4>& c) {
  const bool isBox = c[0].y == c[1].y && c[2].y == c[3].y && c[0].x == c[2].x && c[1].x == c[3].x;
  const bool isImage = c[0].s == c[2].s && c[1].s == c[3].s && c[0].t == c[1].t && c[2].t == c[3].t;
  return isBox && isImage && c[0].color == c[1].color && c[0].color == c[2].color &&
         c[0].color == c[3].color;
}

void RecordLines(State& state, Version& version, GLenum mode,
                 const std::vector<PixelVertex>& vertices) {
  LineRecorder recorder(state, version);
  const std::size_t step = mode == GL_LINES ? 2 : 1;
  for (std::size_t i = 0; i + 1 < vertices.size(); i += step)
    recorder.Record(vertices[i], vertices[i + 1]);
  if (mode == GL_LINE_LOOP && vertices.size() > 1)
    recorder.Record(vertices.back(), vertices.front());
}

void RecordTriangles(State& state, Version& version, GLenum mode,
                     const std::vector<PixelVertex>& v) {
  const auto add = [&](std::size_t a, std::size_t b, std::size_t c) {
    RecordTriangle(state, version, v[a], v[b], v[c]);
  };
  switch (mode) {
  case GL_TRIANGLES:
    for (std::size_t i = 0; i + 2 < v.size(); i += 3)
      add(i, i + 1, i + 2);
    return;
  case GL_TRIANGLE_STRIP:
    for (std::size_t i = 0; i + 2 < v.size(); ++i)
      add(i, i + 1, i + 2);
    return;
  case GL_QUADS:
    for (std::size_t i = 0; i + 3 < v.size(); i += 4) {
      add(i, i + 1, i + 2);
      add(i, i + 2, i + 3);
    }
    return;
  case GL_QUAD_STRIP:
    for (std::size_t i = 0; i + 3 < v.size(); i += 2) {
      add(i, i + 1, i + 2);
      add(i + 2, i + 1, i + 3);
    }
    return;
  default: // GL_TRIANGLE_FAN, GL_POLYGON
    for (std::size_t i = 1; i + 1 < v.size(); ++i)
      add(0, i, i + 1);
  }
}

void RecordPoints(State& state, Version& version, const std::vector<PixelVertex>& vertices) {
  Segments& segments =
      OpenSegments(state, version, ViewportBox(state, version.width, version.height));
  for (const PixelVertex& vertex : vertices) {
    const float x = std::floor(vertex.x);
    const float y = std::floor(vertex.y);
    if (!(std::fabs(x) < kMaxSize && std::fabs(y) < kMaxSize)) continue;
    AddSegment(version, segments,
               {static_cast<std::int32_t>(y) << 16, 0, static_cast<std::int16_t>(x), 1,
                AddColor(segments, vertex.color) & 0x7fffffffU, 0});
  }
}

} // namespace

float Unit(float value) {
  return value > 0.0F ? std::min(value, 1.0F) : 0.0F;
}

int ToComponent(float value) {
  return static_cast<int>(std::lround(Unit(value) * static_cast<float>(kOne)));
}

bool KeepsOpaque(const Blend& blend, int sourceAlpha) {
  if (blend == Blend{GL_SRC_ALPHA, GL_ONE} || blend == Blend{GL_ONE, GL_ONE} ||
      blend == Blend{GL_ONE, GL_ONE_MINUS_SRC_COLOR})
    return true;
  if (blend == Blend{GL_ONE, GL_SRC_ALPHA}) return 2 * sourceAlpha >= kOne;
  return blend == Blend{GL_ONE, GL_ZERO} && sourceAlpha == kOne;
}

Blend BlendOf(const State& state) {
  return state.blends ? state.blend : Blend{};
}

Box ViewportBox(const State& state, int width, int height) {
  const auto end = [](int start, int size, int limit) {
    return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{start} + size, 0, limit));
  };
  return {std::clamp(state.viewport[0], 0, width), std::clamp(state.viewport[1], 0, height),
          end(state.viewport[0], state.viewport[2], width),
          end(state.viewport[1], state.viewport[3], height)};
}

void RecordClear(State& state) {
  const auto surface = state.target.lock();
  if (!surface) return;
  Colors background{};
  for (std::size_t plane = 0; plane < kPlanes; ++plane)
    background[plane] = ToComponent(state.clearColor[plane]);
  if (!surface->Begin(background)) state.Fail(GL_OUT_OF_MEMORY);
}

void RecordPrimitives(State& state, GLenum mode, std::span<const Vertex> vertices) {
  const auto surface = state.target.lock();
  if (!surface) return;
  std::vector<PixelVertex>& pixels = state.pixels;
  pixels.clear();
  for (const Vertex& vertex : vertices) {
    pixels.push_back(ToPixels(state, vertex));
    if (!IsDrawable(pixels.back())) return;
  }
  if (pixels.size() == 4 && (mode == GL_TRIANGLE_STRIP || mode == GL_QUADS)) {
    std::array<PixelVertex, 4> corners = {pixels[0], pixels[1], pixels[2], pixels[3]};
    if (mode == GL_QUADS) std::swap(corners[2], corners[3]);
    if (IsUpright(corners)) return RecordQuad(state, *surface, corners);
  }
  Version* const version = surface->Open();
  if (version == nullptr) return state.Fail(GL_OUT_OF_MEMORY);
  switch (mode) {
  case GL_POINTS:
    RecordPoints(state, *version, pixels);
    break;
  case GL_LINES:
  case GL_LINE_LOOP:
  case GL_LINE_STRIP:
    RecordLines(state, *version, mode, pixels);
    break;
  default:
    RecordTriangles(state, *version, mode, pixels);
  }
  // What is recorded takes memory only for so long.
  if (version->cost > kMostCost && !state.executor.Draw(*version)) state.Fail(GL_OUT_OF_MEMORY);
}

void RecordBitmap(State& state, const BitmapList& list) {
  if (!state.rasterIsValid) return;
  const float x = std::floor(state.rasterPosition[0] - list.xOrigin);
  const float y = std::floor(state.rasterPosition[1] - list.yOrigin);
  state.rasterPosition[0] += list.xMove;
  state.rasterPosition[1] += list.yMove;
  const auto surface = state.target.lock();
  if (!surface || list.runs.empty()) return;
  if (!(std::fabs(x) < kMaxSize && std::fabs(y) < kMaxSize)) return;
  Version* const version = surface->Open();
  if (version == nullptr) return state.Fail(GL_OUT_OF_MEMORY);
  // Only the raster position has to lie within the view, not the character.
  Segments& segments = OpenSegments(state, *version, {0, 0, version->width, version->height});
  const std::uint32_t color = AddColor(segments, state.rasterColor);
  for (const BitmapList::Run& run : list.runs)
    AddSegment(*version, segments,
               {(static_cast<std::int32_t>(y) + run.y) * 65536, 0,
                static_cast<std::int16_t>(static_cast<int>(x) + run.x),
                static_cast<std::uint16_t>(run.length), color & 0x7fffffffU, 0});
}

} // namespace halvenor::raster
