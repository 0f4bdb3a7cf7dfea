// From the host's audio deliveries to the slowly moving measures that the picture follows.
#pragma once

#include "protocol/visual_plugin_data.h"

namespace halvenor {

/// Takes one delivery. Null clears the copy of the last one and leaves every measure. One pass
/// over 256 bins a channel, no allocation. Needs the plug-in's lock.
void ProcessRenderData(VisualPluginData* record, const RenderVisualData* data);

/// On pause and stop: clears the last delivery and the channel levels; the smoothed spectrum, the
/// loudness and the highest active bin decay through later deliveries. Needs the plug-in's lock.
void ResetRenderData(VisualPluginData* record);

} // namespace halvenor
