// Fills, lines, characters and triangles, pixel by pixel.
#include "raster/band.h"
#include "raster/kernels.h"

#include <algorithm>

namespace halvenor::raster {
namespace {

/// The factor of one plane, a share of `kFactorOne`.
int FactorOf(GLenum name, std::size_t plane, const Colors& source, const Colors& target) {
  const auto share = [](int component) { return component + (component > kOne / 2 ? 1 : 0); };
  switch (name) {
  case GL_ZERO:
    return 0;
  case GL_SRC_COLOR:
    return share(source[plane]);
  case GL_ONE_MINUS_SRC_COLOR:
    return kFactorOne - share(source[plane]);
  case GL_SRC_ALPHA:
    return share(source[3]);
  case GL_ONE_MINUS_SRC_ALPHA:
    return kFactorOne - share(source[3]);
  case GL_DST_COLOR:
    return share(target[plane]);
  case GL_ONE_MINUS_DST_COLOR:
    return kFactorOne - share(target[plane]);
  case GL_DST_ALPHA:
    return share(target[3]);
  case GL_ONE_MINUS_DST_ALPHA:
    return kFactorOne - share(target[3]);
  case GL_SRC_ALPHA_SATURATE:
    return plane == 3 ? kFactorOne : std::min(share(source[3]), kFactorOne - share(target[3]));
  default: // GL_ONE
    return kFactorOne;
  }
}

bool ReadsTarget(GLenum factor) {
  return factor == GL_DST_COLOR || factor == GL_ONE_MINUS_DST_COLOR || factor == GL_DST_ALPHA ||
         factor == GL_ONE_MINUS_DST_ALPHA || factor == GL_SRC_ALPHA_SATURATE;
}

/// Draws single pixels of one color.
class Pen {
public:
  Pen(const Blend& blend, const Colors& color, const RowPlaces& rows, int planes)
      : blend_(blend), color_(color), linear_(MakeLinear(blend, color)), rows_(rows),
        planes_(planes),
        adds_(linear_.isPossible && std::all_of(linear_.keep.begin(), linear_.keep.end(),
                                                [](int keep) { return keep == kFactorOne; })) {}

  void Draw(int x, int y) const {
    if (!adds_) return DrawSlowly(x, y);
    Add(rows_.At(y, 0) + x);
  }

  /// Pixels `first` to `end` - 1 along an axis, those that lie from `low` to `high` - 1 across it.
  void DrawRun(bool upward, int first, int end, std::int64_t across, std::int32_t slope, int low,
               int high) const {
    for (int i = first; i < end; ++i, across += slope) {
      const int other = static_cast<int>(across >> 16);
      if (other < low || other >= high) continue;
      const int x = upward ? other : i;
      const int y = upward ? i : other;
      if (!adds_)
        DrawSlowly(x, y);
      else
        Add(rows_.At(y, 0) + x);
    }
  }

private:
  void Add(Component* place) const {
    for (int plane = 0; plane < planes_; ++plane, place += rows_.stride)
      *place = static_cast<Component>(
          std::min(*place + linear_.add[static_cast<std::size_t>(plane)], kOne));
  }

  void DrawSlowly(int x, int y) const {
    Colors target;
    target[3] = kOne;
    for (int plane = 0; plane < planes_; ++plane)
      target[static_cast<std::size_t>(plane)] = rows_.At(y, plane)[x];
    const Colors result = BlendPixel(blend_, color_, target);
    for (int plane = 0; plane < planes_; ++plane)
      rows_.At(y, plane)[x] = static_cast<Component>(result[static_cast<std::size_t>(plane)]);
  }

  Blend blend_;
  Colors color_;
  LinearBlend linear_;
  RowPlaces rows_;
  int planes_;
  bool adds_;
};

void DrawSegment(const Segment& segment, const Pen& pen, const Box& box, const Band& band) {
  int first = segment.first;
  int end = segment.first + segment.count;
  const int bottom = std::max(band.begin, box.bottom);
  const int top = std::min(band.end, box.top);
  if (segment.upward != 0) {
    first = std::max(first, bottom);
    end = std::min(end, top);
  } else {
    first = std::max(first, box.left);
    end = std::min(end, box.right);
  }
  if (first >= end) return;
  std::int64_t across = segment.across + std::int64_t{segment.slope} * (first - segment.first);
  if (segment.upward != 0) {
    for (int y = first; y < end; ++y)
      band.rows.MarkColored(y);
  } else {
    const std::int64_t last = across + std::int64_t{segment.slope} * (end - 1 - first);
    const auto low = static_cast<int>(std::min(across, last) >> 16);
    const auto high = static_cast<int>(std::max(across, last) >> 16);
    for (int y = std::max(low, bottom); y <= std::min(high, top - 1); ++y)
      band.rows.MarkColored(y);
  }
  const bool upward = segment.upward != 0;
  pen.DrawRun(upward, first, end, across, segment.slope, upward ? box.left : bottom,
              upward ? box.right : top);
}

void DrawGradient(const Gradient& gradient, const Gradients& gradients, const Band& band,
                  int planes) {
  int first = gradient.first;
  int end = gradient.end;
  if (gradient.upward != 0) {
    first = std::max<int>(first, band.begin);
    end = std::min<int>(end, band.end);
    for (int y = first; y < end; ++y)
      band.rows.MarkColored(y);
  } else {
    band.rows.MarkColored(gradient.position);
  }
  if (gradient.upward == 0 && gradients.adds) {
    for (int plane = 0; plane < 3; ++plane)
      GetKernels().shade(gradient.color[static_cast<std::size_t>(plane)],
                         gradient.slope[static_cast<std::size_t>(plane)],
                         band.rows.At(gradient.position, plane) + first, end - first);
    return;
  }
  for (int i = first; i < end; ++i) {
    const int x = gradient.upward != 0 ? gradient.position : i;
    const int y = gradient.upward != 0 ? i : gradient.position;
    Colors color;
    for (std::size_t plane = 0; plane < kPlanes; ++plane)
      color[plane] = (gradient.color[plane] + gradient.slope[plane] * (i - gradient.first)) >> 15;
    if (gradients.adds)
      Pen({GL_ONE, GL_ONE}, color, band.rows, 3).Draw(x, y);
    else
      Pen(gradients.blend, color, band.rows, planes).Draw(x, y);
  }
}

} // namespace

Colors BlendPixel(const Blend& blend, const Colors& source, const Colors& target) {
  Colors result;
  for (std::size_t plane = 0; plane < kPlanes; ++plane) {
    const int sum = Product(source[plane], FactorOf(blend.source, plane, source, target)) +
                    Product(target[plane], FactorOf(blend.destination, plane, source, target));
    result[plane] = std::min(sum, kOne);
  }
  return result;
}

LinearBlend MakeLinear(const Blend& blend, const Colors& source) {
  LinearBlend linear;
  linear.isPossible = !ReadsTarget(blend.source) && !ReadsTarget(blend.destination);
  for (std::size_t plane = 0; plane < kPlanes && linear.isPossible; ++plane) {
    linear.keep[plane] = FactorOf(blend.destination, plane, source, {});
    linear.add[plane] = Product(source[plane], FactorOf(blend.source, plane, source, {}));
  }
  return linear;
}

void DrawFill(const Fill& fill, const Band& band, int planes) {
  const LinearBlend linear = MakeLinear(fill.blend, fill.color);
  const Pen pen(fill.blend, fill.color, band.rows, planes);
  const int pixels = fill.box.right - fill.box.left;
  for (int y = std::max(band.begin, fill.box.bottom); y < std::min(band.end, fill.box.top); ++y) {
    band.rows.MarkColored(y);
    if (!linear.isPossible) {
      for (int x = fill.box.left; x < fill.box.right; ++x)
        pen.Draw(x, y);
      continue;
    }
    for (int plane = 0; plane < planes; ++plane) {
      const auto p = static_cast<std::size_t>(plane);
      GetKernels().fade(std::min(linear.keep[p], kOne), linear.add[p],
                        band.rows.At(y, plane) + fill.box.left, pixels);
    }
  }
}

void DrawSegments(const Segments& segments, const Band& band, int planes) {
  const auto& list = segments.bands[static_cast<std::size_t>(band.number)];
  for (std::size_t i = 0; i < list.size();) {
    const std::uint32_t color = list[i].color;
    const Pen pen(segments.blend, segments.colors[color], band.rows, planes);
    for (; i < list.size() && list[i].color == color; ++i)
      DrawSegment(list[i], pen, segments.box, band);
  }
}

void DrawGradients(const Gradients& gradients, const Band& band, int planes) {
  for (int y = band.begin; y < band.end; ++y) {
    Component* const rows[] = {band.rows.At(y, 0), band.rows.At(y, 1), band.rows.At(y, 2)};
    for (const Sheet& sheet : gradients.sheets)
      if (GetKernels().shadeColumns(sheet, y, rows)) band.rows.MarkColored(y);
  }
  for (const Gradient& gradient : gradients.bands[static_cast<std::size_t>(band.number)])
    DrawGradient(gradient, gradients, band, planes);
}

} // namespace halvenor::raster
