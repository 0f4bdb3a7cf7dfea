// The guard through which code outside the plug-in's own (its configuration window) may touch the
// plug-in's record while frames are drawn.
#pragma once

#include "platform/export.h"

namespace halvenor {

struct VisualPluginData;

/// How the plug-in backs the guard. `enter` takes the plug-in's lock unless the calling thread
/// holds it, and says through its result whether it took it; `leave` is called only after a true
/// result. `record` yields the current record or null and is called between the two.
struct GuardBacking {
  bool (*enter)();
  void (*leave)();
  VisualPluginData* (*record)();
};

/// Set once by the plug-in when it registers; null when it is unloaded.
HALVENOR_PLATFORM void SetGuardBacking(const GuardBacking* backing);

/// While it lives, no frame is drawn and no message handled on another thread. Never run an event
/// loop inside it.
class HALVENOR_PLATFORM RecordGuard {
public:
  RecordGuard();
  ~RecordGuard();
  RecordGuard(const RecordGuard&) = delete;
  RecordGuard& operator=(const RecordGuard&) = delete;

  /// The current record, or null when there is none. Valid while the guard lives.
  [[nodiscard]] VisualPluginData* Record() const { return record_; }

private:
  const GuardBacking* backing_;
  bool entered_ = false;
  VisualPluginData* record_ = nullptr;
};

} // namespace halvenor
