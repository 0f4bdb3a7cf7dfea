// Takes out of a program what can be computed before it runs.
#pragma once

#include "raster/programs/program.h"

namespace halvenor::raster {

/// Replaces what depends on constants alone by its value, drops what no output depends on, and
/// brings `attributesRead`, `outputsWritten` and `numTemporaries` up to date. The outputs keep
/// every bit.
void Simplify(Program& program);

} // namespace halvenor::raster
