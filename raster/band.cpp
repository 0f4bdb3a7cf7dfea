#include "raster/band.h"

#include "raster/kernels.h"

#include <algorithm>
#include <cstring>

namespace halvenor::raster {
namespace {

const Image& ImageOf(const Source& source) {
  return source.version ? source.version->image : *source.level;
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
  for (int y = band.begin; y < band.end; ++y)
    for (int plane = 0; plane < version.Planes(); ++plane)
      std::fill_n(band.rows.At(y, plane), version.width,
                  static_cast<Component>(version.background[static_cast<std::size_t>(plane)]));
}

void AddAlpha(const Version& version, const Band& band) {
  for (int y = band.begin; y < band.end; ++y)
    std::fill_n(band.rows.At(y, 3), version.width, static_cast<Component>(kOne));
}

} // namespace

std::unique_ptr<Scratch> Scratch::For(const Version& version, bool withBand) {
  auto scratch = std::make_unique<Scratch>();
  int width = version.width;
  int padded = 1;
  for (const Command& command : version.commands)
    if (const auto* const filter = std::get_if<Filter>(&command)) {
      width = std::max(width, filter->source.version->width);
      padded = 2 * static_cast<int>(Filter::kMaxTaps);
    }
  if (withBand) scratch->band_ = Image(version.width, kBandRows);
  scratch->colors_ = Image(width, 2);
  scratch->padded_ = Image(width + kRowPadding, padded);
  scratch->rows_ = Image(width, static_cast<int>(kRows));
  const bool isMade =
      scratch->colors_ && scratch->padded_ && scratch->rows_ && (!withBand || scratch->band_);
  return isMade ? std::move(scratch) : nullptr;
}

void Scratch::Forget() {
  cached_.fill({});
}

const Component* const* Scratch::Resampled(const Source& source, int row, int pixels) {
  const Image& image = ImageOf(source);
  std::size_t oldest = 0;
  for (std::size_t i = 0; i < kRows; ++i) {
    CachedRow& cached = cached_[i];
    if (cached.image == &image && cached.row == row && cached.across == source.across.get()) {
      cached.order = ++order_;
      return places_[i].data();
    }
    if (cached.order < cached_[oldest].order) oldest = i;
  }
  cached_[oldest] = {&image, source.across.get(), row, ++order_};
  const int planes = source.opaque ? kPlanes - 1 : kPlanes;
  for (int plane = 0; plane < planes; ++plane) {
    Component* const out = rows_.Row(static_cast<int>(oldest), plane);
    places_[oldest][static_cast<std::size_t>(plane)] = out;
    GetKernels().resample(*source.across, image.Row(row, plane), out, pixels);
  }
  return places_[oldest].data();
}

void DrawBand(const Version& version, const Band& band, Scratch& scratch) {
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
      DrawFilter(*filter, band, planes, scratch);
    else if (const auto* const fill = std::get_if<Fill>(&command))
      DrawFill(*fill, band, planes);
    else if (const auto* const segments = std::get_if<Segments>(&command))
      DrawSegments(*segments, band, planes);
    else if (const auto* const gradients = std::get_if<Gradients>(&command))
      DrawGradients(*gradients, band, planes);
    else if (const auto* const programmed = std::get_if<Programmed>(&command))
      DrawProgrammed(*programmed, band, planes);
  }
}

} // namespace halvenor::raster
