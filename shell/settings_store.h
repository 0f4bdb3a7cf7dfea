// How the state record begins: its measures, and its settings from the host's store.
#pragma once

#include "protocol/visual_plugin_data.h"
#include "shell/render_mutex.h"

namespace halvenor {

/// Sets the measures and message times, loads the settings block or falls back to the defaults,
/// and tells the host the full-screen options. `appCookie` and `appProc` must be set. Host calls
/// are made: the record may be gone afterwards.
void InitialiseVisualPluginData(VisualPluginData* record) HALVENOR_REQUIRES(mutex);

/// Tells the host the full-screen size of the block; logs and returns its status.
Status PassFullScreenOptions(const VisualPluginData& record) HALVENOR_REQUIRES(mutex);

} // namespace halvenor
