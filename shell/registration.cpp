#include "shell/registration.h"

#include "gl/diagnostics.h"
#include "shell/configuration_bridge.h"
#include "shell/host_requests.h"
#include "shell/plugin_state.h"

namespace halvenor {
namespace {

constexpr char kName[] = "Halvenor";
constexpr std::uint8_t kFinalStage = 0x80;
constexpr ConfigurationActions kConfigurationActions = {AddPreset, SwitchPresetsToManual,
                                                        LogSettings};

HostMessage Registration() {
  HostMessage record;
  MemClear(&record, sizeof record);
  RegistrationBody& body = record.body.registration;
  cstr2pstr(body.name, kName);
  body.options = kWantsIdleMessages | kWantsConfigure;
  body.creator = kSettingsCreator;
  SetNumVersion(&body.version, 0, 0x02, kFinalStage, 0);
  body.handler = VisualPluginHandler;
  body.refCon = nullptr;
  body.timeBetweenData = kDeliveryMilliseconds;
  body.waveformChannels = kAudioChannels;
  body.spectrumChannels = kAudioChannels;
  body.minWidth = 64;
  body.minHeight = 64;
  body.maxWidth = 32767;
  body.maxHeight = 32767;
  return record;
}

} // namespace

void SetNumVersion(NumVersion* version, std::uint8_t major, std::uint8_t minorAndFix,
                   std::uint8_t stage, std::uint8_t nonRelease) {
  *version = {major, minorAndFix, stage, nonRelease};
}

Status RegisterVisualPlugin(const PluginInitMessage* message) {
  HostMessage record = Registration();
  const Status result = PlayerRegisterVisualPlugin(message->appCookie, message->appProc, &record);
  if (renderer != nullptr) return result;
  renderer = new Renderer;
  renderer->SetConfigurationActions(&kConfigurationActions);
  if (!mutex.Create()) DebugLog(" Failed creating mutex");
  BackGuard();
  return result;
}

} // namespace halvenor
