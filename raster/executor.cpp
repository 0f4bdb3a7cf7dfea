#include "raster/executor.h"

#include "raster/band.h"
#include "raster/kernels.h"

#include <algorithm>

namespace halvenor::raster {
namespace {

template <class Visit>
void ForEachSource(Version& version, const Visit& visit) {
  for (Command& command : version.commands) {
    if (auto* const quad = std::get_if<Quad>(&command))
      for (Source& source : quad->sources)
        visit(source);
    if (auto* const filter = std::get_if<Filter>(&command)) visit(filter->source);
    if (auto* const programmed = std::get_if<Programmed>(&command)) visit(programmed->source);
  }
}

int NumBands(const Version& version) {
  return (version.height + kBandRows - 1) / kBandRows;
}

RowPlaces PlacesOf(const Image& image) {
  return {image.Row(0), image.BlackMarks(), image.Pitch(), image.Stride()};
}

void CopyRows(const Image& image, const Band& band, int width) {
  for (int y = band.begin; y < band.end; ++y) {
    if (image.IsBlack(y)) band.rows.Blacken(y, width);
    for (int plane = image.IsBlack(y) ? 3 : 0; plane < kPlanes; ++plane)
      std::copy_n(image.Row(y, plane), width, band.rows.At(y, plane));
    if (!image.IsBlack(y)) band.rows.MarkColored(y);
  }
}

void Convert(const Version& version, const Band& band, const Destination& to) {
  const int left = std::max(to.x, 0);
  const int right = std::min(to.x + to.width, version.width);
  const int bottom = std::max(band.begin, to.y);
  const int top = std::min(band.end, to.y + to.height);
  if (left >= right || bottom >= top) return;
  for (int y = bottom; y < top; ++y) {
    const Component* planes[kPlanes];
    for (int plane = 0; plane < kPlanes; ++plane)
      planes[plane] = band.rows.At(y, plane) + left;
    if (to.opaque || version.opaque) planes[3] = nullptr;
    const int row = to.height - 1 - (y - to.y);
    std::uint8_t* const bytes = to.topRow + to.stride * row + std::ptrdiff_t{left - to.x} * 4;
    if (planes[3] == nullptr && band.rows.IsBlack(y))
      GetKernels().blackBytes(bytes, right - left);
    else
      GetKernels().toBytes(planes, to.order == Destination::Order::Bgra, bytes, right - left);
  }
  if (to.rowsFinished != nullptr)
    to.rowsFinished(to.refCon, to.height - (top - to.y), to.height - (bottom - to.y));
}

} // namespace

bool Executor::DrawSources(Version& version) {
  bool isDone = true;
  ForEachSource(version, [&](Source& source) {
    if (source.version && !source.version->IsComplete()) isDone = Draw(*source.version) && isDone;
  });
  return isDone;
}

bool Executor::FitScratch(const Version& version, bool withBand) {
  scratch_.resize(static_cast<std::size_t>(workers_.Threads()));
  return std::all_of(scratch_.begin(), scratch_.end(),
                     [&](Scratch& scratch) { return scratch.Fit(version, withBand); });
}

bool Executor::Draw(Version& version) {
  if (version.IsComplete()) return true;
  if (!DrawSources(version)) return false;
  if (!version.image) version.image = Image(version.width, version.height);
  if (!version.image || !FitScratch(version, false)) return false;
  workers_.Run(NumBands(version), [&](int ticket, int thread) {
    Band band;
    band.number = ticket;
    band.begin = ticket * kBandRows;
    band.end = std::min(band.begin + kBandRows, version.height);
    band.rows = PlacesOf(version.image);
    DrawBand(version, band, true, scratch_[static_cast<std::size_t>(thread)]);
  });
  version.isDrawn = true;
  version.lacksAlpha = version.opaque;
  version.commands.clear();
  version.cost = 0;
  version.depth = 0;
  return true;
}

bool Executor::DrawTo(Version& version, const Destination& destination) {
  if (!DrawSources(version)) return false;
  if (!FitScratch(version, true)) return false;
  workers_.Run(NumBands(version), [&](int ticket, int thread) {
    Scratch& mine = scratch_[static_cast<std::size_t>(thread)];
    // From the top, as pictures are shown.
    Band band;
    band.number = NumBands(version) - 1 - ticket;
    band.begin = band.number * kBandRows;
    band.end = std::min(band.begin + kBandRows, version.height);
    const Image& image = mine.BandImage();
    band.rows = PlacesOf(image);
    band.rows.base -= image.Pitch() * band.begin;
    band.rows.black -= band.begin;
    if (version.isDrawn) CopyRows(version.image, band, version.width);
    DrawBand(version, band, false, mine);
    Convert(version, band, destination);
  });
  return true;
}

} // namespace halvenor::raster
