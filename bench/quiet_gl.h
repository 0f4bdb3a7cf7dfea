// OpenGL without any effect, so that what is left of a frame's time is the plug-in's own.
#pragma once

namespace halvenor::bench {

/// Sends all calls of the process to functions that do nothing, on threads without a context of the
/// real layer. Only before other threads exist.
void UseQuietGl();

} // namespace halvenor::bench
