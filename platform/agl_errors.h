// The pending error of each thread, and lines in the debug log.
#pragma once

#include "platform/agl.h"

#include <string_view>

namespace halvenor::agl {

/// Leaves `error` pending for this thread unless another is pending already; `AGL_NO_ERROR` leaves
/// none. True when there was nothing to report.
GLboolean Report(GLenum error);

/// Writes one line of this layer's own to the debug log, cut to what a message holds.
void Log(std::string_view text);

} // namespace halvenor::agl
