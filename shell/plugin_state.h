// The process-wide state of the plug-in.
#pragma once

#include "protocol/visual_plugin_data.h"
#include "renderer/renderer.h"
#include "shell/render_mutex.h"

#include <atomic>
#include <cstdint>

namespace halvenor {

/// Made at registration, never deleted. Written once, before any thread can exist.
extern Renderer* renderer;

/// What the last message brought as its reference constant. It may be anything that a host sends:
/// `LiveRecord` tells a record from a stale or foreign pointer.
extern VisualPluginData* visualPluginData HALVENOR_GUARDED_BY(mutex);

/// Nonzero while the render thread is to keep running.
extern std::atomic<std::int32_t> rendering;
/// Set by the render thread when it starts, cleared after it has been joined.
extern std::atomic<std::int32_t> renderThreadExists;

/// Makes a zero-filled record, or null without memory.
VisualPluginData* CreateRecord() HALVENOR_REQUIRES(mutex);

/// Releases `record` and its strings; `visualPluginData` becomes null if it designated it.
void ReleaseRecord(VisualPluginData* record) HALVENOR_REQUIRES(mutex);

/// `pointer` if it designates a record made and not yet released, else null. Ask again
/// after every host call: the host may have sent 'clr ' from inside it.
VisualPluginData* LiveRecord(const void* pointer) HALVENOR_REQUIRES(mutex);

/// Lets the platform's guard use the plug-in's lock and record.
void BackGuard();

/// Zero-fills `count` bytes; nothing when `count` is 0 or less.
void MemClear(void* pointer, std::int32_t count);

} // namespace halvenor
