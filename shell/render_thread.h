// The thread that draws, and the opening and closing of the renderer around it.
#pragma once

#include "protocol/visual_plugin_data.h"
#include "shell/render_mutex.h"

namespace halvenor {

/// Opens the renderer on the port and rectangle of a 'show' record, draws the first frame here and
/// starts the render thread; what was open is closed first. 1001 when the display cannot be
/// opened, and then no thread runs.
Status OpenRenderer(VisualPluginData* record, const VisualWindowMessage* showMessage)
    HALVENOR_REQUIRES(mutex);

/// Stops the render thread, letting go of the lock while it ends, and closes the renderer.
void CloseRenderer() HALVENOR_REQUIRES(mutex);

} // namespace halvenor
