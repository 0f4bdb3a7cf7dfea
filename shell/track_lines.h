// The two message lines: the track's title and artist, and the stream's title.
#pragma once

#include "protocol/visual_plugin_data.h"

namespace halvenor {

/// On 'vply': keeps the records and shows a line for each of them for `trackTextDuration`. A
/// missing one (null) is zero-filled, and its line stays as it is. Needs the plug-in's lock.
void TakePlay(VisualPluginData* record, const TrackInfo* track, const StreamInfo* stream);

/// On 'ctrk': the same with fixed times; a stream's line takes the place of the track's.
void TakeTrackChange(VisualPluginData* record, const TrackInfo* track, const StreamInfo* stream);

} // namespace halvenor
