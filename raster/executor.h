// Draws what was recorded.
#pragma once

#include "raster/context.h"
#include "raster/surface.h"
#include "raster/workers.h"

namespace halvenor::raster {

/// Draws a version and, before it, all that it looks at, into images; afterwards none of them holds
/// commands. False without memory.
bool Draw(Version& version, Workers& workers);

/// Draws a version straight to memory; its image, if it has one, does not change. False without
/// memory.
bool DrawTo(Version& version, const Destination& destination, Workers& workers);

} // namespace halvenor::raster
