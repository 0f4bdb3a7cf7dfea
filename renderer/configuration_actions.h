// What the keys ask of the configuration window.
#pragma once

#include "protocol/visual_plugin_data.h"

namespace halvenor {

/// Actions of a configuration window that stands outside the renderer. Called on the host's thread
/// with the plug-in's lock held.
struct ConfigurationActions {
  void (*addPreset)(VisualPluginData* data);
  void (*switchPresetsToManual)(VisualPluginData* data);
  void (*logSettings)(VisualPluginData* data);
};

} // namespace halvenor
