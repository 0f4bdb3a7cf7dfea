#include "raster/executor.h"

#include "raster/band.h"
#include "raster/kernels.h"

#include <algorithm>
#include <cstring>
#include <memory>

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

bool DrawSources(Version& version, Workers& workers) {
  bool isDone = true;
  ForEachSource(version, [&](Source& source) {
    if (source.version && !source.version->IsComplete())
      isDone = Draw(*source.version, workers) && isDone;
  });
  return isDone;
}

int NumBands(const Version& version) {
  return (version.height + kBandRows - 1) / kBandRows;
}

/// Each thread's own memory: null if there is none.
std::vector<std::unique_ptr<Scratch>> MakeScratch(const Version& version, const Workers& workers,
                                                  bool withBand) {
  std::vector<std::unique_ptr<Scratch>> all(static_cast<std::size_t>(workers.Threads()));
  for (auto& scratch : all) {
    scratch = Scratch::For(version, withBand);
    if (!scratch) return {};
  }
  return all;
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
    GetKernels().toBytes(planes, to.order == Destination::Order::Bgra,
                         to.topRow + to.stride * row + std::ptrdiff_t{left - to.x} * 4,
                         right - left);
  }
  if (to.rowsFinished != nullptr)
    to.rowsFinished(to.refCon, to.height - (top - to.y), to.height - (bottom - to.y));
}

} // namespace

bool Draw(Version& version, Workers& workers) {
  if (version.IsComplete()) return true;
  if (!DrawSources(version, workers)) return false;
  if (!version.image) version.image = Image(version.width, version.height);
  const auto scratch = MakeScratch(version, workers, false);
  if (!version.image || scratch.empty()) return false;
  workers.Run(NumBands(version), [&](int ticket, int thread) {
    Band band;
    band.number = ticket;
    band.begin = ticket * kBandRows;
    band.end = std::min(band.begin + kBandRows, version.height);
    band.rows = {version.image.Row(0), version.image.Pitch(), version.image.Stride()};
    DrawBand(version, band, *scratch[static_cast<std::size_t>(thread)]);
  });
  version.isDrawn = true;
  version.lacksAlpha = version.opaque;
  version.commands.clear();
  version.cost = 0;
  version.depth = 0;
  return true;
}

bool DrawTo(Version& version, const Destination& destination, Workers& workers) {
  if (!DrawSources(version, workers)) return false;
  const auto scratch = MakeScratch(version, workers, true);
  if (scratch.empty()) return false;
  workers.Run(NumBands(version), [&](int ticket, int thread) {
    Scratch& mine = *scratch[static_cast<std::size_t>(thread)];
    // From the top, as pictures are shown.
    Band band;
    band.number = NumBands(version) - 1 - ticket;
    band.begin = band.number * kBandRows;
    band.end = std::min(band.begin + kBandRows, version.height);
    const Image& image = mine.BandImage();
    band.rows = {image.Row(0) - image.Pitch() * band.begin, image.Pitch(), image.Stride()};
    if (version.isDrawn)
      for (int y = band.begin; y < band.end; ++y)
        std::memcpy(band.rows.At(y, 0), version.image.Row(y),
                    static_cast<std::size_t>(image.Pitch()) * sizeof(Component));
    DrawBand(version, band, mine);
    Convert(version, band, destination);
  });
  return true;
}

} // namespace halvenor::raster
