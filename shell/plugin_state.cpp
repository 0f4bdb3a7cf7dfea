#include "shell/plugin_state.h"

#include "platform/carbon.h"
#include "platform/guard.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

namespace halvenor {

Renderer* renderer = nullptr;
VisualPluginData* visualPluginData = nullptr;
std::atomic<std::int32_t> rendering = 0;
std::atomic<std::int32_t> renderThreadExists = 0;

namespace {

std::vector<VisualPluginData*> liveRecords HALVENOR_GUARDED_BY(mutex);

bool EnterGuard() HALVENOR_NO_ANALYSIS {
  if (mutex.HeldByThisThread()) return false;
  mutex.Lock();
  return true;
}

void LeaveGuard() HALVENOR_NO_ANALYSIS {
  mutex.Unlock();
}

VisualPluginData* GuardedRecord() HALVENOR_NO_ANALYSIS {
  return LiveRecord(visualPluginData);
}

constexpr GuardBacking kGuardBacking = {EnterGuard, LeaveGuard, GuardedRecord};

// After the module is unloaded the platform layer must not call into it.
struct GuardBackingEnd {
  ~GuardBackingEnd() { SetGuardBacking(nullptr); }
};

} // namespace

VisualPluginData* CreateRecord() {
  void* block = NewPtrClear(sizeof(VisualPluginData));
  if (block == nullptr) return nullptr;
  auto* record = ::new (block) VisualPluginData{};
  liveRecords.push_back(record);
  return record;
}

void ReleaseRecord(VisualPluginData* record) {
  std::erase(liveRecords, record);
  if (visualPluginData == record) visualPluginData = nullptr;
  delete record->trackText;
  delete record->streamText;
  DisposePtr(record);
}

VisualPluginData* LiveRecord(const void* pointer) {
  const auto found = std::find(liveRecords.begin(), liveRecords.end(), pointer);
  return found == liveRecords.end() ? nullptr : *found;
}

void BackGuard() {
  static const GuardBackingEnd end;
  SetGuardBacking(&kGuardBacking);
}

void MemClear(void* pointer, std::int32_t count) {
  if (count > 0) std::memset(pointer, 0, static_cast<std::size_t>(count));
}

} // namespace halvenor
