#include "shell/host_requests.h"

#include "shell/plugin_state.h"

namespace halvenor {
namespace {

HostMessage ZeroedMessage() {
  HostMessage record;
  MemClear(&record, sizeof record);
  return record;
}

} // namespace

Status ITCallApplication(void* appCookie, HostProc appProc, FourCharCode request,
                         HostMessage* record) {
  HostMessage own;
  if (record == nullptr) {
    own = ZeroedMessage();
    record = &own;
  }
  record->majorVersion = kHostMessageMajorVersion;
  record->minorVersion = kHostMessageMinorVersion;
  record->size = sizeof *record;
  return appProc(appCookie, request, record);
}

Status PlayerRegisterVisualPlugin(void* appCookie, HostProc appProc, HostMessage* record) {
  return ITCallApplication(appCookie, appProc, request::kRegisterVisualPlugin, record);
}

Status PlayerGetPluginFileSpec(void* appCookie, HostProc appProc, FileSpec* fileSpec) {
  HostMessage record = ZeroedMessage();
  record.body.fileSpec.fileSpec = fileSpec;
  return ITCallApplication(appCookie, appProc, request::kGetPluginFileSpec, &record);
}

Status PlayerGetPluginData(void* appCookie, HostProc appProc, void* data, std::uint32_t size,
                           std::uint32_t* sizeRead) {
  HostMessage record = ZeroedMessage();
  record.body.pluginData.data = data;
  record.body.pluginData.size = size;
  const Status result = ITCallApplication(appCookie, appProc, request::kGetPluginData, &record);
  if (sizeRead != nullptr) *sizeRead = record.body.pluginData.sizeRead;
  return result;
}

Status PlayerSetPluginData(void* appCookie, HostProc appProc, void* data, std::uint32_t size) {
  HostMessage record = ZeroedMessage();
  record.body.pluginData.data = data;
  record.body.pluginData.size = size;
  return ITCallApplication(appCookie, appProc, request::kSetPluginData, &record);
}

Status PlayerSetFullScreen(void* appCookie, HostProc appProc, bool fullScreen) {
  HostMessage record = ZeroedMessage();
  record.body.fullScreen.fullScreen = fullScreen ? 1 : 0;
  return ITCallApplication(appCookie, appProc, request::kSetFullScreen, &record);
}

Status PlayerSetFullScreenOptions(void* appCookie, HostProc appProc, std::int16_t minBitDepth,
                                  std::int16_t maxBitDepth, std::int16_t preferredBitDepth,
                                  std::int16_t desiredWidth, std::int16_t desiredHeight) {
  HostMessage record = ZeroedMessage();
  record.body.fullScreenOptions = {minBitDepth, maxBitDepth, preferredBitDepth, desiredWidth,
                                   desiredHeight};
  return ITCallApplication(appCookie, appProc, request::kSetFullScreenOptions, &record);
}

} // namespace halvenor
