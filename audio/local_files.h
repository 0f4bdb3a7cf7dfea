// Which files of this computer GStreamer may open. Private to the audio library.
#pragma once

#include <optional>
#include <string>

namespace halvenor::local_files {

/// From now on GStreamer opens a file by its URI only if `Allow` was called for it: whoever sends a
/// playlist or a stream over the network could name files of this computer in it, and demuxers open
/// what they find there. To be called once, after GStreamer was started; process-wide.
void Guard();

/// The user has asked for the file of that URI. Any thread.
void Allow(const std::string& uri);

/// The URI of a file that was refused since the last call. Any thread.
std::optional<std::string> TakeRefused();

} // namespace halvenor::local_files
