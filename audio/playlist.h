// Lists of media: playlist files, folders, and single media alike.
#pragma once

#include <cstddef>
#include <stop_token>
#include <string>
#include <vector>

namespace halvenor {

struct PlaylistEntry {
  std::string medium; ///< a path or a URI, as `MediaPlayer::Open` takes it
  std::string title;  ///< from the list, UTF-8, one line; may be empty

  friend bool operator==(const PlaylistEntry&, const PlaylistEntry&) = default;
};

struct Playlist {
  std::vector<PlaylistEntry> entries;
  /// What was wrong, one line each, naming the list; never more than a dozen.
  std::vector<std::string> problems;
};

/// More entries than these are not taken, with a word in `problems`.
inline constexpr std::size_t kMostPlaylistEntries = 100'000;

/// Everything that `medium` stands for:
///
/// - a folder: the sound files in it and below, in natural order (2 before 10), told by their
///   contents' type as far as the name tells it; hidden ones and playlists are left out;
/// - a playlist file (M3U and M3U8 with titles, PLS, XSPF; by its contents, whatever its name):
///   its entries, lists and folders in it opened up in their place, each list only once, eight
///   deep. Entries are addresses, file:// URIs, absolute paths, or paths relative to the list's
///   own folder, also as other systems write them; a path may lead anywhere, but only to a plain
///   file or folder that is there. Others are left out, with a word;
/// - anything else, an address too: itself.
///
/// Never asks the network. Bounded: lists beyond 64 MiB are refused. May take a second for 10^5
/// entries, and minutes for the folder of a whole machine: `stop` ends it early, with what was
/// found until then. Any thread.
Playlist ReadPlaylist(const std::string& medium, std::stop_token stop = {});

/// Whether `medium` is the address of something that is a playlist by its name: a list that has to
/// be fetched before it can be read.
bool IsPlaylistAddress(const std::string& medium);

/// What the list at `address` names, which was fetched as `bytes`: addresses, also relative to its
/// own. Files of this computer are left out, with a word. What is no list after all, or one of the
/// pieces of a single stream (HLS), is to be played itself: the entry is `address`.
Playlist ReadFetchedPlaylist(const std::string& address, const std::string& bytes);

} // namespace halvenor
