// The message handler: what the plug-in does with each message of its host.
#include "platform/carbon.h"
#include "shell/audio_intake.h"
#include "shell/configuration_bridge.h"
#include "shell/host_requests.h"
#include "shell/plugin_state.h"
#include "shell/registration.h"
#include "shell/render_thread.h"
#include "shell/settings_store.h"
#include "shell/track_lines.h"

namespace halvenor {
namespace {

// Which key the handler takes itself.
constexpr char kConfigureKey = 'c';

Status Initialize(VisualPluginData*, VisualMessage* message) HALVENOR_REQUIRES(mutex) {
  if (message->init.appProc == nullptr) return status::kNotHandled;
  VisualPluginData* record = CreateRecord();
  visualPluginData = record;
  if (record == nullptr) return status::kOutOfMemory;
  record->appCookie = message->init.appCookie;
  record->appProc = message->init.appProc;
  // The host writes to a block of our own, since it may release the record from inside the call.
  FileSpec fileSpec{};
  const Status result = PlayerGetPluginFileSpec(record->appCookie, record->appProc, &fileSpec);
  if (LiveRecord(record) != nullptr) {
    record->pluginFileSpec = fileSpec;
    message->init.refCon = record;
    InitialiseVisualPluginData(record);
  }
  // Messages from inside the host calls came with something else, or released the record.
  visualPluginData = LiveRecord(record);
  message->init.refCon = visualPluginData;
  return result;
}

Status CleanUp(VisualPluginData* record, VisualMessage*) HALVENOR_REQUIRES(mutex) {
  if (record == nullptr) return status::kOk;
  CloseRenderer(); // lets go of the lock for a while: look again
  if (LiveRecord(record) != nullptr) ReleaseRecord(record);
  return status::kOk;
}

Status Configure(VisualPluginData* record, VisualMessage*) HALVENOR_REQUIRES(mutex) {
  if (record != nullptr) OpenConfigWindow(record);
  return status::kOk;
}

Status Show(VisualPluginData* record, VisualMessage* message) HALVENOR_REQUIRES(mutex) {
  if (record != nullptr) record->windowOptions = message->window.options;
  return OpenRenderer(record, &message->window);
}

Status Hide(VisualPluginData* record, VisualMessage*) HALVENOR_REQUIRES(mutex) {
  CloseRenderer(); // lets go of the lock for a while: look again
  if (LiveRecord(record) == nullptr) return status::kOk;
  MemClear(&record->trackInfo, sizeof record->trackInfo);
  MemClear(&record->streamInfo, sizeof record->streamInfo);
  return status::kOk;
}

Status SetWindow(VisualPluginData* record, VisualMessage* message) HALVENOR_REQUIRES(mutex) {
  if (record != nullptr) record->windowOptions = message->window.options;
  const Rect rect = message->window.drawRect;
  const bool resized = renderer != nullptr && renderer->Resize(message->window.port, &rect) != 0;
  return resized ? status::kOk : status::kDisplayNotOpened;
}

Status TakeRenderData(VisualPluginData* record, VisualMessage* message) HALVENOR_REQUIRES(mutex) {
  record->renderTimeStampID = message->render.timeStampID;
  ProcessRenderData(record, message->render.renderData);
  return status::kOk;
}

Status Play(VisualPluginData* record, VisualMessage* message) HALVENOR_REQUIRES(mutex) {
  TakePlay(record, message->track.trackInfo, message->track.streamInfo);
  return status::kOk;
}

Status ChangeTrack(VisualPluginData* record, VisualMessage* message) HALVENOR_REQUIRES(mutex) {
  TakeTrackChange(record, message->track.trackInfo, message->track.streamInfo);
  return status::kOk;
}

Status PauseOrStop(VisualPluginData* record, VisualMessage*) HALVENOR_REQUIRES(mutex) {
  record->playing = 0;
  ResetRenderData(record);
  return status::kOk;
}

Status Unpause(VisualPluginData* record, VisualMessage*) HALVENOR_REQUIRES(mutex) {
  record->playing = 1;
  return status::kOk;
}

Status TakeEvent(VisualPluginData* record, VisualMessage* message) HALVENOR_REQUIRES(mutex) {
  const EventRecord* event = message->event.event;
  if (event == nullptr) return status::kNotHandled;
  if (event->what != kKeyDownEvent && event->what != kKeyRepeatEvent) return status::kNotHandled;
  const auto key = static_cast<char>(event->message & 0xFFU);
  if (key == kConfigureKey) {
    if (record != nullptr) PlayerSetFullScreen(record->appCookie, record->appProc, false);
    return Configure(LiveRecord(record), message);
  }
  if (record == nullptr || renderer == nullptr) return status::kNotHandled;
  return renderer->KeyboardInput(record, key);
}

Status DoNothing(VisualPluginData*, VisualMessage*) {
  return status::kOk;
}

using HandleProc = Status (*)(VisualPluginData*, VisualMessage*);

// What a message cannot be handled without: one without its record of data is not handled, one
// without a state record has nothing to change.
enum Needs : unsigned { kNothing = 0, kRecord = 1, kMessage = 2, kBoth = kRecord | kMessage };

struct MessageRow {
  FourCharCode code;
  unsigned needs;
  HandleProc handle;
};

constexpr MessageRow kMessages[] = {
    {message::kInit, kMessage, Initialize},
    {message::kCleanup, kNothing, CleanUp},
    {message::kConfigure, kNothing, Configure},
    {message::kShow, kMessage, Show},
    {message::kHide, kNothing, Hide},
    {message::kSetWindow, kMessage, SetWindow},
    {message::kRenderData, kBoth, TakeRenderData},
    {message::kPlay, kBoth, Play},
    {message::kChangeTrack, kBoth, ChangeTrack},
    {message::kPause, kRecord, PauseOrStop},
    {message::kStop, kRecord, PauseOrStop},
    {message::kUnpause, kRecord, Unpause},
    {message::kEvent, kMessage, TakeEvent},
    {message::kIdle, kNothing, DoNothing},
    {message::kSetPosition, kNothing, DoNothing},
    {message::kEnable, kNothing, DoNothing},
    {message::kDisable, kNothing, DoNothing},
    {message::kUpdate, kNothing, DoNothing},
};

} // namespace

Status VisualPluginHandler(FourCharCode code, VisualMessage* message, void* refCon) {
  const MessageScope scope;
  visualPluginData = static_cast<VisualPluginData*>(refCon);
  VisualPluginData* record = LiveRecord(refCon);
  for (const MessageRow& row : kMessages) {
    if (row.code != code) continue;
    if ((row.needs & kMessage) != 0 && message == nullptr) return status::kNotHandled;
    if ((row.needs & kRecord) != 0 && record == nullptr) return status::kOk;
    return row.handle(record, message);
  }
  return status::kNotHandled;
}

} // namespace halvenor
