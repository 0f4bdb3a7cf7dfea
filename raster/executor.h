// Draws what was recorded.
#pragma once

#include "raster/band.h"
#include "raster/context.h"
#include "raster/surface.h"
#include "raster/workers.h"

#include <memory>
#include <vector>

namespace halvenor::raster {

/// A context's threads and their memory, which is kept from one picture to the next. Used by one
/// thread at a time.
class Executor {
public:
  /// See `Workers::SetThreads`.
  void SetThreads(int threads) { workers_.SetThreads(threads); }

  /// Draws a version and, before it, all that it looks at, into images; afterwards none of them
  /// holds commands. False without memory.
  bool Draw(Version& version);

  /// Draws a version straight to memory; its image, if it has one, does not change. False without
  /// memory.
  bool DrawTo(Version& version, const Destination& destination);

private:
  bool DrawSources(Version& version);
  bool FitScratch(const Version& version, bool withBand);

  Workers workers_;
  std::vector<Scratch> scratch_; ///< by thread
};

} // namespace halvenor::raster
