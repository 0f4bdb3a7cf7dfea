// Lines by the diamond-exit rule, and the segments that lines and characters consist of.
#include "raster/recorder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace halvenor::raster {
namespace {

// Vertices lie on this grid within a pixel.
constexpr float kSubpixels = 256.0F;
// Lines are cut off this far from the origin, where fixed point would end.
constexpr float kReach = kMaxSize;

// The library's functions take longer than the rest of a short line.
float Floor(float value) {
  constexpr float kWhole = 1 << 23; // larger ones have no fraction
  if (!(std::fabs(value) < kWhole)) return value;
  const auto whole = static_cast<float>(static_cast<int>(value));
  return value < whole ? whole - 1.0F : whole;
}

int ToFixed(float value) {
  const double all = static_cast<double>(value) * 65536.0;
  return static_cast<int>(all < 0.0 ? all - 0.5 : all + 0.5);
}

float Snap(float value) {
  return Floor(value * kSubpixels + 0.5F) / kSubpixels;
}

/// Along the longer axis (u) and across it (v).
struct Point {
  float u;
  float v;
};

/// Shortens a line to |u| <= kReach; false when nothing is left.
bool Cut(Point& from, Point& to) {
  const Point a = from;
  const float slope = (to.v - a.v) / (to.u - a.u);
  for (Point* const end : {&from, &to}) {
    const float u = std::clamp(end->u, -kReach, kReach);
    if (u == end->u) continue;
    *end = {u, a.v + (u - a.u) * slope};
  }
  return from.u != to.u;
}

/// Whether the line leaves a diamond in the column of its start (its end): that of the pixel in
/// whose diamond it starts, or the one that it passes in the middle of the column.
bool LeavesDiamond(Point at, float du, float slope, bool isStart) {
  const float u = at.u - Floor(at.u) - 0.5F;
  float v = at.v - Floor(at.v) - 0.5F;
  if (v == -0.5F && slope * du < 0.0F) v = 0.5F;
  if (std::fabs(u) + std::fabs(v) < 0.5F) return isStart;
  const bool isBeforeMiddle = du > 0.0F ? u < 0.0F : u > 0.0F;
  return isBeforeMiddle == isStart;
}

} // namespace

Segments& OpenSegments(State& state, Version& version, const Box& box) {
  const Blend blend = BlendOf(state);
  if (!version.commands.empty())
    if (auto* const last = std::get_if<Segments>(&version.commands.back()))
      if (last->blend == blend && last->box == box) return *last;
  Segments segments;
  segments.box = box;
  segments.blend = blend;
  segments.bands.resize(static_cast<std::size_t>((version.height + kBandRows - 1) / kBandRows));
  return std::get<Segments>(version.commands.emplace_back(std::move(segments)));
}

std::uint32_t AddColor(Segments& segments, const Vec4& color) {
  Colors components{};
  for (std::size_t plane = 0; plane < kPlanes; ++plane)
    components[plane] = ToComponent(color[plane]);
  if (segments.colors.empty() || segments.colors.back() != components)
    segments.colors.push_back(components);
  return static_cast<std::uint32_t>(segments.colors.size() - 1) & 0x7fffffffU;
}

void AddSegment(Version& version, Segments& segments, const Segment& segment) {
  const Box& box = segments.box;
  int bottom = segment.first;
  int top = segment.first + segment.count;
  if (segment.upward == 0) {
    const std::int64_t last = segment.across + std::int64_t{segment.slope} * (segment.count - 1);
    bottom = static_cast<int>(std::min<std::int64_t>(segment.across, last) >> 16);
    top = static_cast<int>(std::max<std::int64_t>(segment.across, last) >> 16) + 1;
  }
  bottom = std::max(bottom, box.bottom);
  top = std::min(top, box.top);
  if (bottom >= top || segment.count == 0) return;
  const Colors& color = segments.colors[segment.color];
  version.opaque = version.opaque && KeepsOpaque(segments.blend, color[3]);
  for (int band = bottom / kBandRows; band * kBandRows < top; ++band) {
    segments.bands[static_cast<std::size_t>(band)].push_back(segment);
    ++version.cost;
  }
}

LineRecorder::LineRecorder(State& state, Version& version)
    : state_(state), version_(version), box_(ViewportBox(state, version.width, version.height)) {}

void LineRecorder::Record(const PixelVertex& from, const PixelVertex& to) {
  Point a = {Snap(from.x), Snap(from.y)};
  Point b = {Snap(to.x), Snap(to.y)};
  const bool upward = std::fabs(b.v - a.v) > std::fabs(b.u - a.u);
  if (upward) {
    std::swap(a.u, a.v);
    std::swap(b.u, b.v);
  }
  const float du = b.u - a.u;
  if (du == 0.0F || !Cut(a, b)) return;
  const float slope = (b.v - a.v) / (b.u - a.u);
  const bool drawsStart = LeavesDiamond(a, du, slope, true);
  const bool drawsEnd = LeavesDiamond(b, du, slope, false);
  const int startPixel = static_cast<int>(Floor(a.u));
  const int endPixel = static_cast<int>(Floor(b.u));
  int first = std::min(startPixel, endPixel);
  int last = std::max(startPixel, endPixel);
  if (startPixel == endPixel) {
    // Within one pixel's column, the line has to enter and to leave.
    if (!drawsStart || !drawsEnd) return;
  } else {
    if (!(startPixel < endPixel ? drawsStart : drawsEnd)) ++first;
    if (!(startPixel < endPixel ? drawsEnd : drawsStart)) --last;
  }
  first = std::max(first, upward ? box_.bottom : box_.left);
  last = std::min(last, (upward ? box_.top : box_.right) - 1);
  // Where the line is out of reach across, there is nothing to draw, either.
  const auto acrossAt = [&](int pixel) {
    return a.v + (static_cast<float>(pixel) + 0.5F - a.u) * slope;
  };
  if (const float over = std::fabs(acrossAt(first)) - kReach; over > 0.0F) {
    if (over > static_cast<float>(last - first) * std::fabs(slope)) return;
    first += static_cast<int>(std::ceil(over / std::fabs(slope)));
  }
  if (first > last) return;

  Segment segment;
  segment.upward = upward ? 1 : 0;
  segment.slope = ToFixed(slope);
  segment.across = ToFixed(acrossAt(first));
  segment.first = static_cast<std::int16_t>(first);
  segment.count = static_cast<std::uint16_t>(last - first + 1);
  if (from.color == to.color) return Add(segment, from.color);
  segment.count = 1;
  for (int pixel = first; pixel <= last; ++pixel) {
    const float share = Unit((static_cast<float>(pixel) + 0.5F - a.u) / (b.u - a.u));
    Vec4 color;
    for (std::size_t i = 0; i < color.size(); ++i)
      color[i] = from.color[i] + (to.color[i] - from.color[i]) * share;
    segment.first = static_cast<std::int16_t>(pixel);
    Add(segment, color);
    segment.across += segment.slope;
  }
}

void LineRecorder::Add(Segment& segment, const Vec4& color) {
  if (segments_ == nullptr) segments_ = &OpenSegments(state_, version_, box_);
  if (!hasColor_ || color != color_) {
    hasColor_ = true;
    color_ = color;
    colorNumber_ = AddColor(*segments_, color);
  }
  segment.color = colorNumber_ & 0x7fffffffU;
  AddSegment(version_, *segments_, segment);
}

} // namespace halvenor::raster
