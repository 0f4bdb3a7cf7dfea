#include "raster/band.h"

#include "raster/kernels.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <utility>

namespace halvenor::raster {
namespace {

bool IsZero(const Component* row, int n) {
  constexpr int kBlock = 64;
  for (int i = 0; i < n; i += kBlock) {
    int all = 0;
    for (int k = i; k < std::min(i + kBlock, n); ++k)
      all |= row[k];
    if (all != 0) return false;
  }
  return true;
}

/// Whether the first command draws over all that is there.
bool IsReplaced(const Version& version) {
  if (version.commands.empty()) return false;
  const Box all = {0, 0, version.width, version.height};
  const Command& first = version.commands.front();
  if (const auto* const quad = std::get_if<Quad>(&first))
    return quad->blend == Blend{} && quad->box == all;
  const auto* const filter = std::get_if<Filter>(&first);
  return filter != nullptr && filter->box == all;
}

void DrawBackground(const Version& version, const Band& band) {
  const auto& background = version.background;
  const bool isBlack = background[0] == 0 && background[1] == 0 && background[2] == 0;
  for (int y = band.begin; y < band.end; ++y) {
    if (isBlack) band.rows.Blacken(y, version.width);
    for (int plane = isBlack ? 3 : 0; plane < version.Planes(); ++plane)
      std::fill_n(band.rows.At(y, plane), version.width,
                  static_cast<Component>(background[static_cast<std::size_t>(plane)]));
    if (!isBlack) band.rows.MarkColored(y);
  }
}

void AddAlpha(const Version& version, const Band& band) {
  for (int y = band.begin; y < band.end; ++y)
    std::fill_n(band.rows.At(y, 3), version.width, static_cast<Component>(kOne));
}

/// How many sources the quads resample, each counted once.
std::size_t NumSources(const Version& version) {
  std::set<std::pair<const void*, const void*>> sources;
  for (const Command& command : version.commands)
    if (const auto* const quad = std::get_if<Quad>(&command))
      for (const Source& source : quad->sources)
        sources.emplace(source.version ? static_cast<const void*>(source.version.get())
                                       : source.level.get(),
                        source.across.get());
  return sources.size();
}

void FinishRows(const Version& version, const Band& band) {
  const int width = version.width;
  for (int y = band.begin; y < band.end; ++y) {
    if (version.Planes() == 3 && !band.rows.IsBlack(y)) {
      const bool isBlack = IsZero(band.rows.At(y, 0), width) && IsZero(band.rows.At(y, 1), width) &&
                           IsZero(band.rows.At(y, 2), width);
      if (isBlack) band.rows.Blacken(y, width);
    }
    for (int plane = band.rows.IsBlack(y) ? 3 : 0; plane < version.Planes(); ++plane) {
      Component* const row = band.rows.At(y, plane);
      std::fill_n(row - kRowEdge, kRowEdge, row[0]);
      std::fill_n(row + width, kRowEdge, row[width - 1]);
    }
  }
}

} // namespace

void RowPlaces::Blacken(int y, int width) const {
  if (IsBlack(y)) return;
  for (int plane = 0; plane < 3; ++plane)
    std::fill_n(At(y, plane) - kRowEdge, width + 2 * kRowEdge, Component{0});
  black[y] = 1;
}

bool Scratch::Fit(const Version& version, bool withBand) {
  const auto isWide = [&](const Image& image) { return image && image.Width() >= version.width; };
  if (withBand && !isWide(band_)) band_ = Image(version.width, kBandRows);
  // Of rows that a narrower picture made black, what lies beyond its width is not.
  if (withBand && version.width != bandWidth_) {
    if (band_) std::memset(band_.BlackMarks(), 0, kBandRows);
    bandWidth_ = version.width;
  }
  if (!isWide(colors_)) colors_ = Image(version.width, 2);
  if (!isWide(rows_)) rows_ = Image(version.width, static_cast<int>(kRows));
  used_ = std::clamp(2 * NumSources(version), std::size_t{2}, kRows);
  return colors_ && rows_ && (!withBand || band_);
}

void Scratch::Forget() {
  cached_.fill({});
  order_ = 0;
}

const Component* const* Scratch::Resampled(const Source& source, int row, int pixels) {
  const Image& image = source.version ? source.version->image : *source.level;
  std::size_t oldest = 0;
  for (std::size_t i = 0; i < used_; ++i) {
    CachedRow& cached = cached_[i];
    if (cached.image == &image && cached.row == row && cached.across == source.across.get()) {
      cached.order = ++order_;
      return places_[i].data();
    }
    if (cached.order < cached_[oldest].order) oldest = i;
  }
  cached_[oldest] = {&image, source.across.get(), row, ++order_};
  const int planes = source.opaque ? kPlanes - 1 : kPlanes;
  std::array<const Component*, kPlanes> texels{};
  std::array<Component*, kPlanes> outs{};
  for (int plane = 0; plane < planes; ++plane) {
    const auto p = static_cast<std::size_t>(plane);
    texels[p] = image.Row(row, plane);
    outs[p] = rows_.Row(static_cast<int>(oldest), plane);
    places_[oldest][p] = source.across->isIdentity ? texels[p] + source.across->first[0] : outs[p];
  }
  if (!source.across->isIdentity)
    GetKernels().resample(*source.across, texels.data(), outs.data(), planes, pixels);
  return places_[oldest].data();
}

void DrawBand(const Version& version, const Band& band, bool isKept, Scratch& scratch) {
  const int planes = version.Planes();
  if (!version.isDrawn) {
    if (!IsReplaced(version)) DrawBackground(version, band);
  } else if (version.lacksAlpha && planes == kPlanes) {
    AddAlpha(version, band);
  }
  scratch.Forget();
  const std::vector<Command>& commands = version.commands;
  for (std::size_t i = 0; i < commands.size();) {
    std::size_t end = i;
    while (end < commands.size() && std::holds_alternative<Quad>(commands[end]))
      ++end;
    if (end > i) {
      // All quads of one row before the next row.
      for (int y = band.begin; y < band.end; ++y)
        for (std::size_t k = i; k < end; ++k)
          DrawQuadRow(std::get<Quad>(commands[k]), band.rows, y, planes, scratch);
      i = end;
      continue;
    }
    const Command& command = commands[i++];
    if (const auto* const filter = std::get_if<Filter>(&command))
      DrawFilter(*filter, band, planes);
    else if (const auto* const fill = std::get_if<Fill>(&command))
      DrawFill(*fill, band, planes);
    else if (const auto* const segments = std::get_if<Segments>(&command))
      DrawSegments(*segments, band, planes);
    else if (const auto* const gradients = std::get_if<Gradients>(&command))
      DrawGradients(*gradients, band, planes);
    else if (const auto* const programmed = std::get_if<Programmed>(&command))
      DrawProgrammed(*programmed, band, planes);
  }
  if (isKept) FinishRows(version, band);
}

} // namespace halvenor::raster
