// The host's track and stream records.
#pragma once

#include "protocol/records.h"

#include <optional>
#include <string_view>

namespace halvenor {

/// A track record with title and artist (UTF-8); every other byte is 0.
TrackInfo MakeTrackInfo(std::string_view title, std::string_view artist);

/// A stream record with a stream title (UTF-8); every other byte is 0.
StreamInfo MakeStreamInfo(std::string_view title);

/// The records of 'vply' and 'ctrk'.
struct TrackRecords {
  std::optional<TrackInfo> track;
  std::optional<StreamInfo> stream;

  TrackInfo* Track() { return track ? &*track : nullptr; }
  StreamInfo* Stream() { return stream ? &*stream : nullptr; }
};

/// The records that show these titles (UTF-8); `stream` is that of a stream, if it is one. Of a
/// track record a plug-in shows "TITLE - ARTIST", so a title without an artist goes into a stream
/// record, of which the title alone is shown.
TrackRecords MakeTrackRecords(std::string_view title, std::string_view artist,
                              std::optional<std::string_view> stream = {});

} // namespace halvenor
