// What the plug-in and the module of its configuration window know of each other: the functions
// that the module exports, and the one through which it calls back.
//
// All of it happens on the host's thread. The module is initialized before each of its other
// entries is called, every time, and is never unloaded.
#pragma once

#include "protocol/four_char_code.h"

namespace halvenor {

struct VisualPluginData;

/// The module's bundle, in the private frameworks folder of the plug-in's own.
inline constexpr char kConfigurationBundleName[] = "CocoaBundle.bundle";

/// What the module may ask of the plug-in; any other code does nothing and gives 0.
namespace configuration_code {
/// Have the host store the settings block.
inline constexpr int kStoreSettings = 0;
/// Tell the host the block's full-screen size.
inline constexpr int kPassFullScreenOptions = 1;
} // namespace configuration_code

/// Names under which the module exports its entries.
namespace configuration_entry {
inline constexpr char kInitialize[] = "initializeBundle";
inline constexpr char kOrderWindowFront[] = "orderWindowFront";
inline constexpr char kAddPreset[] = "AddPreset";
inline constexpr char kSwitchToManual[] = "SwitchToManual";
inline constexpr char kLogSettings[] = "LogSettings";
} // namespace configuration_entry

extern "C" {

/// Takes no lock: call it from inside a `RecordGuard` whose record is not null, with that record.
/// Returns the host's status. The host may send messages before it returns: look the record
/// up again afterwards.
using ConfigurationCallback = Status (*)(VisualPluginData* record, int code);

/// The entry `kInitialize`: hands over the callback and the record's address, which is good until
/// the record goes (`RecordGuard` tells). Called with the plug-in's lock held. 0 on success; after
/// any other status the action is not forwarded.
using InitializeConfigurationEntry = Status (*)(ConfigurationCallback callback,
                                                VisualPluginData* record);

/// The other entries; 0 on success. `kOrderWindowFront` is called with the plug-in's lock free,
/// the others with the lock held, and those must not run an event loop.
using ConfigurationActionEntry = Status (*)();

} // extern "C"

} // namespace halvenor
