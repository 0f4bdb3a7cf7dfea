// What is written in playlist files. Private to the audio library.
#pragma once

#include "audio/playlist.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace halvenor {

enum class PlaylistFormat { M3u, Pls, Xspf };

/// The format of a list by its beginning; one that begins like nothing in particular, yet is text,
/// is M3U if it is `named` like a playlist.
std::optional<PlaylistFormat> FindPlaylistFormat(std::string_view beginning, bool named);
/// The same of a file.
std::optional<PlaylistFormat> FindPlaylistFormat(const std::filesystem::path& file, bool named);

/// Hands the entries on, as they are written but in UTF-8 where the text allows it, until the
/// receiver returns false. On damage hands on what comes before it, leaves a word in `problem` and
/// returns false.
bool ParsePlaylist(PlaylistFormat format, const std::string& bytes,
                   const std::function<bool(const PlaylistEntry&)>& receiver, std::string& problem);

} // namespace halvenor
