#include "raster/band.h"
#include "raster/kernels.h"

#include <algorithm>

namespace halvenor::raster {
namespace {

int Factor(int share) {
  return std::min(share, kOne);
}

struct Lines {
  const Component* const* below;
  const Component* const* above;
  int weight;
};

Lines FindLines(const Source& source, int row, int pixels, Scratch& scratch) {
  const auto at = static_cast<std::size_t>(row);
  const int weight = source.up->weight[at];
  const Component* const* const below = scratch.Resampled(source, source.up->first[at], pixels);
  const Component* const* const above =
      weight == 0 ? below : scratch.Resampled(source, source.up->second[at], pixels);
  return {below, above, weight};
}

/// One source with constant alpha, over black or added: most of what there is to draw.
bool DrawScaled(const Quad& quad, const RowPlaces& rows, int y, int planes, Scratch& scratch) {
  const bool adds = quad.blend == Blend{GL_SRC_ALPHA, GL_ONE};
  if (quad.hasPolynomial || quad.sources.size() != 1 || planes != 3) return false;
  const Source& source = quad.sources[0];
  if (!source.opaque || source.weight != kFactorOne || !(adds || quad.blend == Blend{}))
    return false;
  const int pixels = quad.box.right - quad.box.left;
  const Lines lines = FindLines(source, y - quad.box.bottom, pixels, scratch);
  for (int plane = 0; plane < planes; ++plane) {
    const auto p = static_cast<std::size_t>(plane);
    int scale = quad.scale[p];
    if (adds)
      scale = Product(scale, quad.scale[3]);
    else if (quad.alphaFactor != kOne)
      scale = Product(scale, quad.alphaFactor + 1);
    const int above = Product(scale, lines.weight);
    GetKernels().put(lines.below[p], lines.above[p], Factor(scale - above), Factor(above),
                     quad.loss, adds, rows.At(y, plane) + quad.box.left, pixels);
  }
  return true;
}

/// The source's colors of a row, alpha included, into the scratch.
void MakeColors(const Quad& quad, int y, int planes, Scratch& scratch) {
  const Kernels& kernels = GetKernels();
  const int pixels = quad.box.right - quad.box.left;
  bool isFirst = true;
  for (const Source& source : quad.sources) {
    const Lines lines = FindLines(source, y - quad.box.bottom, pixels, scratch);
    for (int plane = 0; plane < planes; ++plane) {
      Component* const out = scratch.Colors(plane);
      Component* const one = isFirst ? out : scratch.Mixed(plane);
      if (plane == 3 && source.opaque)
        std::fill_n(one, pixels, static_cast<Component>(kOne));
      else
        kernels.mix(lines.below[plane], lines.above[plane], lines.weight, one, pixels);
      if (!isFirst)
        kernels.accumulate(one, Factor(source.weight), out, pixels);
      else if (source.weight != kFactorOne)
        kernels.fade(Factor(source.weight), 0, out, pixels);
    }
    isFirst = false;
  }
  for (int plane = 0; plane < planes; ++plane) {
    const auto p = static_cast<std::size_t>(plane);
    Component* const out = scratch.Colors(plane);
    if (quad.hasPolynomial) {
      std::array<int, 4> factors{};
      std::transform(quad.polynomial[p].begin(), quad.polynomial[p].end(), factors.begin(), Factor);
      kernels.polynomial(factors.data(), out, pixels);
    } else if (quad.scale[p] != kFactorOne) {
      kernels.fade(Factor(quad.scale[p]), 0, out, pixels);
    }
  }
}

void BlendRow(const Quad& quad, const RowPlaces& rows, int y, int planes, Scratch& scratch) {
  const int pixels = quad.box.right - quad.box.left;
  for (int x = 0; x < pixels; ++x) {
    Colors source;
    Colors target;
    target[3] = kOne;
    for (int plane = 0; plane < kPlanes; ++plane) {
      const auto p = static_cast<std::size_t>(plane);
      source[p] = scratch.Colors(plane)[x];
      if (plane < planes) target[p] = rows.At(y, plane)[quad.box.left + x];
    }
    Colors result = BlendPixel(quad.blend, source, target);
    for (int plane = 0; plane < planes; ++plane) {
      const auto p = static_cast<std::size_t>(plane);
      if (quad.loss != 0 && plane < 3)
        result[p] = std::max(result[p] - quad.loss, std::min(result[p], target[p]));
      rows.At(y, plane)[quad.box.left + x] = static_cast<Component>(result[p]);
    }
  }
}

/// Blends that need no more than one plane at a time.
bool BlendPlanes(const Quad& quad, const RowPlaces& rows, int y, int planes, Scratch& scratch) {
  const Kernels& kernels = GetKernels();
  const int pixels = quad.box.right - quad.box.left;
  const auto target = [&](int plane) { return rows.At(y, plane) + quad.box.left; };
  if (quad.blend == Blend{GL_ONE, GL_ONE_MINUS_SRC_COLOR}) {
    for (int plane = 0; plane < planes; ++plane)
      kernels.screen(scratch.Colors(plane), target(plane), pixels);
    return true;
  }
  if (quad.blend == Blend{}) {
    for (int plane = 0; plane < planes; ++plane)
      std::copy_n(scratch.Colors(plane), pixels, target(plane));
    return true;
  }
  if (planes == 3 && quad.blend == Blend{GL_SRC_ALPHA, GL_ONE} && quad.evenAlpha >= 0) {
    for (int plane = 0; plane < planes; ++plane)
      kernels.accumulate(scratch.Colors(plane), quad.evenAlpha, target(plane), pixels);
    return true;
  }
  return false;
}

} // namespace

void DrawQuadRow(const Quad& quad, const RowPlaces& rows, int y, int planes, Scratch& scratch) {
  if (y < quad.box.bottom || y >= quad.box.top) return;
  if (DrawScaled(quad, rows, y, planes, scratch)) return;
  const bool needsAlpha = planes == kPlanes || quad.evenAlpha < 0;
  MakeColors(quad, y, needsAlpha ? kPlanes : kPlanes - 1, scratch);
  if (BlendPlanes(quad, rows, y, planes, scratch)) return;
  if (!needsAlpha)
    std::fill_n(scratch.Colors(3), quad.box.right - quad.box.left,
                static_cast<Component>(quad.evenAlpha));
  BlendRow(quad, rows, y, planes, scratch);
}

void DrawFilter(const Filter& filter, const Band& band, int planes, Scratch& scratch) {
  const Image& image = filter.source.version->image;
  const int pixels = filter.box.right - filter.box.left;
  const int begin = std::max(band.begin, filter.box.bottom);
  const int end = std::min(band.end, filter.box.top);
  const int from = filter.box.left + filter.offsetX; // texel of the first pixel
  constexpr int kSlots = 2 * static_cast<int>(Filter::kMaxTaps);
  std::array<int, kSlots> held;
  held.fill(-1);
  const auto padded = [&](int row) {
    const int texel = std::clamp(row, 0, image.Height() - 1);
    const int slot = texel % kSlots;
    if (held[static_cast<std::size_t>(slot)] == texel) return slot;
    held[static_cast<std::size_t>(slot)] = texel;
    for (int plane = 0; plane < planes; ++plane) {
      Component* const out = scratch.Padded(slot, plane);
      if (plane == 3 && filter.source.opaque) {
        std::fill_n(out - Filter::kReach, pixels + 2 * Filter::kReach, Component{kOne});
        continue;
      }
      const Component* const in = image.Row(texel, plane);
      for (int x = -Filter::kReach; x < 0; ++x)
        out[x] = in[std::clamp(from + x, 0, image.Width() - 1)];
      for (int x = pixels; x < pixels + Filter::kReach; ++x)
        out[x] = in[std::clamp(from + x, 0, image.Width() - 1)];
      if (from >= 0 && from + pixels <= image.Width())
        std::copy_n(in + from, pixels, out);
      else
        for (int x = 0; x < pixels; ++x)
          out[x] = in[std::clamp(from + x, 0, image.Width() - 1)];
    }
    return slot;
  };
  std::array<const Component*, Filter::kMaxTaps> rows;
  std::array<int, Filter::kMaxTaps> factors;
  for (int y = begin; y < end; ++y)
    for (int plane = 0; plane < planes; ++plane) {
      for (std::size_t i = 0; i < filter.taps.size(); ++i) {
        const Filter::Tap& tap = filter.taps[i];
        rows[i] = scratch.Padded(padded(y + filter.offsetY + tap.dy), plane) + tap.dx;
        factors[i] = Factor(tap.weight);
      }
      GetKernels().filter(rows.data(), factors.data(), static_cast<int>(filter.taps.size()),
                          band.rows.At(y, plane) + filter.box.left, pixels);
    }
}

} // namespace halvenor::raster
