// Which files are sound, and which are lists of sound, told by their names.
#pragma once

#include <string>
#include <vector>

namespace halvenor {

/// The extensions of the sound files that this installation can play, in lower case and without a
/// dot ("flac"), sorted. From the typefinders and decoders of GStreamer, which is asked once per
/// process; empty if it cannot be started. The only list of its kind: for folders, dialogs, drops.
/// Any thread.
const std::vector<std::string>& SoundExtensions();

/// Of playlists: "m3u", "m3u8", "pls", "xspf".
const std::vector<std::string>& PlaylistExtensions();

/// Whether the file name ends in one of `SoundExtensions`, in any case.
bool IsSoundName(const std::string& name);
/// The same of `PlaylistExtensions`; a path or URI.
bool IsPlaylistName(const std::string& medium);

} // namespace halvenor
