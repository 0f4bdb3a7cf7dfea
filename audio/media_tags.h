// What the two sources of sound share: `AudioReader` (audio/audio_reader.h), which decodes as fast
// as it is asked, and `MediaPlayer` (audio/media_player.h), which plays. Both take a path or a URI,
// anything that GStreamer and its installed plug-ins decode, and analyze its first sound stream at
// any rate: mono feeds both channels, more than two are mixed down.
#pragma once

#include <string>

namespace halvenor {

/// What a medium says of itself: fit to be shown (`Printable`, files/printable.h). `title` is never
/// empty once the medium is open: without a tag it is the file's name without its extension.
struct MediaTags {
  std::string title;
  std::string artist;
  std::string album;
  friend bool operator==(const MediaTags&, const MediaTags&) = default;
};

/// What internet radio says of itself and of what it sends now; as above, but both may be empty.
struct StreamTags {
  std::string station;
  std::string title; ///< mostly "ARTIST - TITLE"
  friend bool operator==(const StreamTags&, const StreamTags&) = default;
};

} // namespace halvenor
