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

std::array<int, 4> FactorsOf(const Quad& quad, std::size_t plane) {
  std::array<int, 4> factors{};
  std::transform(quad.polynomial[plane].begin(), quad.polynomial[plane].end(), factors.begin(),
                 Factor);
  return factors;
}

/// A polynomial of one source, screened or added: the glow.
bool DrawShining(const Quad& quad, const RowPlaces& rows, int y, int planes, Scratch& scratch) {
  if (!quad.hasPolynomial || quad.sources.size() != 1 || planes != 3) return false;
  const Source& source = quad.sources[0];
  const bool adds = quad.blend == Blend{GL_SRC_ALPHA, GL_ONE} && quad.evenAlpha >= 0;
  if (source.weight != kFactorOne || !(adds || quad.blend == Blend{GL_ONE, GL_ONE_MINUS_SRC_COLOR}))
    return false;
  const int pixels = quad.box.right - quad.box.left;
  const Lines lines = FindLines(source, y - quad.box.bottom, pixels, scratch);
  for (int plane = 0; plane < planes; ++plane) {
    const auto p = static_cast<std::size_t>(plane);
    const std::array<int, 4> factors = FactorsOf(quad, p);
    GetKernels().shine(lines.below[p], lines.above[p], lines.weight, factors.data(),
                       adds ? quad.evenAlpha : -1, rows.At(y, plane) + quad.box.left, pixels);
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
      const std::array<int, 4> factors = FactorsOf(quad, p);
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

const Image& ImageOf(const Source& source) {
  return source.version ? source.version->image : *source.level;
}

/// Whether the source's colors are 0 all along a row of the quad.
bool IsBlack(const Quad& quad, int y) {
  const auto row = static_cast<std::size_t>(y - quad.box.bottom);
  const auto isBlack = [row](const Source& source) {
    const Image& image = ImageOf(source);
    return image.IsBlack(source.up->first[row]) &&
           (source.up->weight[row] == 0 || image.IsBlack(source.up->second[row]));
  };
  const bool keepsBlack =
      !quad.hasPolynomial ||
      (quad.polynomial[0][0] == 0 && quad.polynomial[1][0] == 0 && quad.polynomial[2][0] == 0);
  return keepsBlack && std::all_of(quad.sources.begin(), quad.sources.end(), isBlack);
}

/// Black leaves an opaque picture as it is, or replaces it by black.
bool DrawBlack(const Quad& quad, const RowPlaces& rows, int y, int planes) {
  if (planes != 3 || !IsBlack(quad, y)) return false;
  if (quad.blend == Blend{}) {
    if (rows.IsBlack(y)) return true;
    const int pixels = quad.box.right - quad.box.left;
    for (int plane = 0; plane < planes; ++plane)
      std::fill_n(rows.At(y, plane) + quad.box.left, pixels, Component{0});
    return true;
  }
  return quad.blend == Blend{GL_SRC_ALPHA, GL_ONE} ||
         quad.blend == Blend{GL_ONE, GL_ONE_MINUS_SRC_COLOR};
}

/// Where the taps of one row's first pixel look, in the first plane.
struct Lookups {
  std::array<const Component*, Filter::kMaxTaps> rows;
  std::array<int, Filter::kMaxTaps> factors;
  int count = 0;
};

/// Those at black rows are left out where only colors count.
Lookups FindLookups(const Filter& filter, int y, int planes) {
  const Image& image = filter.source.version->image;
  Lookups lookups;
  for (const Filter::Tap& tap : filter.taps) {
    const int row = std::clamp(y + filter.offsetY + tap.dy, 0, image.Height() - 1);
    if (planes == 3 && image.IsBlack(row)) continue;
    const auto i = static_cast<std::size_t>(lookups.count++);
    lookups.rows[i] = image.Row(row) + filter.box.left + filter.offsetX + tap.dx;
    lookups.factors[i] = Factor(tap.weight);
  }
  return lookups;
}

/// Where pixels look beyond the edges that the rows have.
void FilterFarPixels(const Filter& filter, const RowPlaces& rows, int y, int plane) {
  const Image& image = filter.source.version->image;
  for (int x = filter.box.left; x < filter.box.right; ++x) {
    int sum = 0;
    for (const Filter::Tap& tap : filter.taps) {
      const int row = std::clamp(y + filter.offsetY + tap.dy, 0, image.Height() - 1);
      const int texel = std::clamp(x + filter.offsetX + tap.dx, 0, image.Width() - 1);
      sum += Product(image.Row(row, plane)[texel], Factor(tap.weight));
    }
    rows.At(y, plane)[x] = static_cast<Component>(std::min(sum, kOne));
  }
}

Component EvenAlpha(const Filter& filter) {
  int sum = 0;
  for (const Filter::Tap& tap : filter.taps)
    sum += Product(kOne, Factor(tap.weight));
  return static_cast<Component>(std::min(sum, kOne));
}

bool ReachesFar(const Filter& filter) {
  const int left = filter.box.left + filter.offsetX;
  const int right = filter.box.right + filter.offsetX;
  const int end = filter.source.version->image.Width() + kRowEdge;
  return std::any_of(filter.taps.begin(), filter.taps.end(), [=](const Filter::Tap& tap) {
    return left + tap.dx < -kRowEdge || right + tap.dx > end;
  });
}

} // namespace

void DrawQuadRow(const Quad& quad, const RowPlaces& rows, int y, int planes, Scratch& scratch) {
  if (y < quad.box.bottom || y >= quad.box.top) return;
  if (DrawBlack(quad, rows, y, planes)) return;
  rows.MarkColored(y);
  if (DrawScaled(quad, rows, y, planes, scratch)) return;
  if (DrawShining(quad, rows, y, planes, scratch)) return;
  const bool needsAlpha = planes == kPlanes || quad.evenAlpha < 0;
  MakeColors(quad, y, needsAlpha ? kPlanes : kPlanes - 1, scratch);
  if (BlendPlanes(quad, rows, y, planes, scratch)) return;
  if (!needsAlpha)
    std::fill_n(scratch.Colors(3), quad.box.right - quad.box.left,
                static_cast<Component>(quad.evenAlpha));
  BlendRow(quad, rows, y, planes, scratch);
}

void DrawFilter(const Filter& filter, const Band& band, int planes) {
  const Image& image = filter.source.version->image;
  const int pixels = filter.box.right - filter.box.left;
  const int begin = std::max(band.begin, filter.box.bottom);
  const int end = std::min(band.end, filter.box.top);
  const bool reachesFar = ReachesFar(filter);
  for (int y = begin; y < end; ++y) {
    const Lookups lookups = FindLookups(filter, y, planes);
    if (lookups.count == 0 && band.rows.IsBlack(y)) continue;
    for (int plane = 0; plane < planes; ++plane) {
      Component* const target = band.rows.At(y, plane) + filter.box.left;
      if (plane == 3 && filter.source.opaque)
        std::fill_n(target, pixels, EvenAlpha(filter));
      else if (lookups.count == 0)
        std::fill_n(target, pixels, Component{0});
      else if (reachesFar)
        FilterFarPixels(filter, band.rows, y, plane);
      else
        GetKernels().filter(lookups.rows.data(), std::ptrdiff_t{image.Stride()} * plane,
                            lookups.factors.data(), lookups.count, target, pixels);
    }
    if (lookups.count != 0) band.rows.MarkColored(y);
  }
}

} // namespace halvenor::raster
