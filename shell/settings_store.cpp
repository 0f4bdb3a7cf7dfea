#include "shell/settings_store.h"

#include "gl/diagnostics.h"
#include "shell/host_requests.h"
#include "shell/plugin_state.h"

namespace halvenor {
namespace {

constexpr float kFirstHighestActiveBin = 150.0F;
constexpr std::int32_t kFirstFrameDelay = 10000;
constexpr std::int32_t kFirstFontSize = 9;

// Stored blocks before the current version: the fields they lack get what they always were.
bool Upgrade(Settings& settings) {
  switch (settings.settingsVersion) {
  case 110:
    settings.fontSize = kFirstFontSize;
    [[fallthrough]];
  case 111:
    settings.frameDelay = kFirstFrameDelay;
    settings.settingsVersion = kSettingsVersion;
    DebugLog(" Halvenor settings updated from old version");
    return true;
  default:
    return false;
  }
}

// The host writes to a block of our own, since it may release the record from inside the call.
// False when the record is gone.
bool LoadSettings(VisualPluginData* record) HALVENOR_REQUIRES(mutex) {
  Settings settings = record->settings;
  std::uint32_t bytesRead = 0;
  const Status result = PlayerGetPluginData(record->appCookie, record->appProc, &settings,
                                            sizeof settings, &bytesRead);
  if (result != status::kOk)
    DebugLog("Halvenor - Reading preferences %i, read %i bytes, error %i", settings.settingsVersion,
             static_cast<int>(bytesRead), result);
  const bool stored = result == status::kOk && bytesRead != 0;
  if (!stored || (settings.settingsVersion != kSettingsVersion && !Upgrade(settings)))
    settings = DefaultSettings();
  if (LiveRecord(record) == nullptr) return false;
  record->settings = settings;
  return true;
}

} // namespace

void InitialiseVisualPluginData(VisualPluginData* record) {
  record->highestActiveBin = kFirstHighestActiveBin;
  record->loudness = 0.0F;
  record->trackTextTime = 0;
  record->streamTextTime = 0;
  if (LoadSettings(record)) PassFullScreenOptions(*record);
}

Status PassFullScreenOptions(const VisualPluginData& record) {
  const Settings& settings = record.settings;
  const Status result =
      PlayerSetFullScreenOptions(record.appCookie, record.appProc, 16, 32, 32,
                                 static_cast<std::int16_t>(settings.fullScreenWidth),
                                 static_cast<std::int16_t>(settings.fullScreenHeight));
  if (result != status::kOk) DebugLog("Set Full Screen error - %i", result);
  return result;
}

} // namespace halvenor
