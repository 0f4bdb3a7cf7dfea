#include "shell/configuration_bridge.h"

#include "gl/diagnostics.h"
#include "gl/resource_file.h"
#include "platform/carbon.h"
#include "protocol/configuration_entries.h"
#include "shell/host_requests.h"
#include "shell/plugin_state.h"
#include "shell/settings_store.h"

namespace halvenor {

CFBundleRef bundleRef = nullptr;

namespace {

constexpr std::int16_t kAlertTicks = 20;

struct Action {
  const char* entry;
  const char* missing; ///< what is logged without it
};

constexpr Action kOrderWindowFront = {configuration_entry::kOrderWindowFront,
                                      " Can't find orderWindow function"};
constexpr Action kAddPreset = {configuration_entry::kAddPreset, " Can't find AddPreset function"};
constexpr Action kSwitchToManual = {configuration_entry::kSwitchToManual,
                                    " Can't find SwitchToManual function"};
constexpr Action kLogSettings = {configuration_entry::kLogSettings,
                                 " Can't find LogSettings function"};

template <typename Entry>
Entry Find(const char* name) {
  return reinterpret_cast<Entry>(CFBundleGetFunctionPointerForName(bundleRef, name));
}

Status Initialize(VisualPluginData* record) {
  const auto initialize = Find<InitializeConfigurationEntry>(configuration_entry::kInitialize);
  if (initialize != nullptr) return initialize(CocoaCallback, record);
  DebugLog(" Can't find initialize function");
  return status::kConfigurationMissing;
}

// The bundle is ready for an action, and the record that it was told of is still there.
bool IsReady(VisualPluginData* record) HALVENOR_REQUIRES(mutex) {
  return InitCocoaBundle(record) == status::kOk && LiveRecord(record) != nullptr;
}

bool Perform(const Action& action) {
  const auto entry = Find<ConfigurationActionEntry>(action.entry);
  if (entry == nullptr) {
    DebugLog("%s", action.missing);
  } else if (entry() == status::kOk) {
    return true;
  }
  DebugLog(" Can't call function");
  return false;
}

void Forward(VisualPluginData* record, const Action& action) HALVENOR_REQUIRES(mutex) {
  if (IsReady(record) && !Perform(action)) SysBeep(kAlertTicks);
}

// The URL of the bundle called `name`, to be released; null after a report.
CFURLRef CopyPrivateBundleURL(CFBundleRef mainBundle, CFStringRef name) {
  const CFURLRef folder = CFBundleCopyPrivateFrameworksURL(mainBundle);
  CFURLRef url = nullptr;
  if (folder != nullptr) {
    url = CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, folder, name, false);
    if (url == nullptr) DebugLog(" Can't create bundle URL");
    CFRelease(folder);
  }
  if (url == nullptr) DebugLog(" Can't copy URL");
  return url;
}

} // namespace

void MyLoadPrivateFrameworkBundle(CFStringRef name, CFBundleRef* bundle) {
  const CFBundleRef mainBundle = CFBundleGetBundleWithIdentifier(kBundleIdentifier);
  const CFURLRef url = mainBundle == nullptr ? nullptr : CopyPrivateBundleURL(mainBundle, name);
  if (url == nullptr) {
    DebugLog(" Can't find main bundle");
    return;
  }
  *bundle = CFBundleCreate(kCFAllocatorDefault, url);
  CFRelease(url);
}

Status InitCocoaBundle(VisualPluginData* record) {
  record->frontWindow = FrontWindow();
  MyLoadPrivateFrameworkBundle(kConfigurationBundleName, &bundleRef);
  Status result = status::kConfigurationMissing;
  if (bundleRef == nullptr) {
    DebugLog(" Can't create bundle");
    DebugLog(" Can't find initialize function");
  } else {
    if (!CFBundleLoadExecutable(bundleRef)) DebugLog(" Couldn't load exe");
    result = Initialize(record);
  }
  if (result != status::kOk) {
    DebugLog(" Can't init bundle");
    SysBeep(kAlertTicks);
  }
  return result;
}

void OpenConfigWindow(VisualPluginData* record) {
  const bool ready = IsReady(record);
  bool failed = false;
  {
    const UnlockedScope unlocked;
    failed = ready && !Perform(kOrderWindowFront);
  }
  if (failed) SysBeep(kAlertTicks);
}

void AddPreset(VisualPluginData* record) {
  Forward(record, kAddPreset);
}

void SwitchPresetsToManual(VisualPluginData* record) {
  Forward(record, kSwitchToManual);
}

void LogSettings(VisualPluginData* record) {
  Forward(record, kLogSettings);
}

// Only the host's thread creates and releases records, so it may look one up without the lock.
Status CocoaCallback(VisualPluginData* record, int code) HALVENOR_NO_ANALYSIS {
  if (code != configuration_code::kStoreSettings &&
      code != configuration_code::kPassFullScreenOptions)
    return status::kOk;
  if (LiveRecord(record) == nullptr) return status::kNotHandled;
  if (code == configuration_code::kPassFullScreenOptions) return PassFullScreenOptions(*record);
  // The host reads a copy, since it may release the record from inside the call.
  Settings settings = record->settings;
  const Status result =
      PlayerSetPluginData(record->appCookie, record->appProc, &settings, sizeof settings);
  if (result != status::kOk) DebugLog("Halvenor Writing preferences, error %i", result);
  return result;
}

} // namespace halvenor
