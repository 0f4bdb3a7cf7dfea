// The way to the configuration window, which is a bundle of its own inside the plug-in's. The
// bundle is looked up, loaded and initialized again before every action.
//
// Host's thread. A failure is written to the debug log, sounds the alert and ends the action; the
// caller is not told. Host calls and the bundle's entries may bring further messages: the record
// may be gone after any of these functions.
#pragma once

#include "platform/core_foundation.h"
#include "protocol/visual_plugin_data.h"
#include "shell/render_mutex.h"

namespace halvenor {

/// The configuration bundle as it was found last; null when it was not there.
extern CFBundleRef bundleRef;

/// Stores the bundle called `name` in the plug-in's private frameworks folder, or null, in
/// `bundle`; leaves `bundle` alone when that folder is not known.
void MyLoadPrivateFrameworkBundle(CFStringRef name, CFBundleRef* bundle);

/// Finds, loads and initializes the bundle for `record`, which must be live.
/// `kConfigurationMissing` without a bundle or an initializer, else the initializer's status.
Status InitCocoaBundle(VisualPluginData* record) HALVENOR_REQUIRES(mutex);

/// Brings the window to the front. Releases the lock meanwhile and takes it again in any case.
void OpenConfigWindow(VisualPluginData* record) HALVENOR_REQUIRES(mutex);

/// What the keys ask of the window; the lock stays held.
void AddPreset(VisualPluginData* record) HALVENOR_REQUIRES(mutex);
void SwitchPresetsToManual(VisualPluginData* record) HALVENOR_REQUIRES(mutex);
void LogSettings(VisualPluginData* record) HALVENOR_REQUIRES(mutex);

/// What the bundle calls back (see configuration_entries.h). Takes no lock. A record that is not
/// live has nothing to store: `kNotHandled`.
extern "C" Status CocoaCallback(VisualPluginData* record, int code);

} // namespace halvenor
