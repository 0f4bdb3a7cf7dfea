// The creation times in a video file.
#pragma once

#include <string>

namespace halvenor::render {

/// Sets every creation and modification time in an MP4 file to 0, "unknown", so that the same
/// frames give the same bytes on every day. `fd` is open for reading and writing. False with
/// `errno` when it cannot be read or written, or is no MP4 file (EINVAL).
bool ClearMp4Times(int fd);

} // namespace halvenor::render
