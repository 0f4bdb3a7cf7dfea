// The host's track and stream records.
#pragma once

#include "protocol/records.h"

#include <string_view>

namespace halvenor {

/// A track record with title and artist (UTF-8); every other byte is 0.
TrackInfo MakeTrackInfo(std::string_view title, std::string_view artist);

/// A stream record with a stream title (UTF-8); every other byte is 0.
StreamInfo MakeStreamInfo(std::string_view title);

} // namespace halvenor
