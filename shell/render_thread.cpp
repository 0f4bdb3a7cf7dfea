#include "shell/render_thread.h"

#include "platform/clock.h"
#include "shell/plugin_state.h"

#include <pthread.h>

namespace halvenor {
namespace {

constexpr std::int64_t kFullScreenPause = 3000; // microseconds

pthread_t renderThread HALVENOR_GUARDED_BY(mutex);
// True from creation to join, even before the thread has set `renderThreadExists`.
bool renderThreadCreated HALVENOR_GUARDED_BY(mutex) = false;

std::int64_t PauseAfterFrame(const VisualPluginData* record) {
  if (record == nullptr) return DefaultSettings().frameDelay;
  if ((record->windowOptions & kFullScreenOption) != 0) return kFullScreenPause;
  return record->settings.frameDelay;
}

void* RenderThread(void*) {
  renderThreadExists = 1;
  while (rendering != 0) {
    std::int64_t pause = 0;
    {
      const FrameScope frame;
      if (rendering == 0) break; // cleared while this thread waited for the lock
      VisualPluginData* record = LiveRecord(visualPluginData);
      renderer->Render(record);
      pause = PauseAfterFrame(record);
    }
    clock::SleepFor(pause);
  }
  clock::ThreadGone();
  return nullptr;
}

void StartRenderThread() HALVENOR_REQUIRES(mutex) {
  clock::ThreadStarting();
  renderThreadCreated = pthread_create(&renderThread, nullptr, RenderThread, nullptr) == 0;
  if (!renderThreadCreated) clock::ThreadGone();
}

void JoinRenderThread() HALVENOR_REQUIRES(mutex) {
  if (!renderThreadCreated) return;
  renderThreadCreated = false;
  const pthread_t thread = renderThread;
  {
    const clock::KeepAwake awake;
    const UnlockedScope unlocked;
    pthread_join(thread, nullptr);
  }
  renderThreadExists = 0;
}

} // namespace

void CloseRenderer() {
  if (renderer == nullptr) return;
  rendering = 0;
  JoinRenderThread();
  renderer->Close();
}

Status OpenRenderer(VisualPluginData* record, const VisualWindowMessage* showMessage) {
  if (renderer == nullptr) return status::kDisplayNotOpened;
  CloseRenderer(); // lets go of the lock for a while: the record is looked up again below
  const Rect rect = showMessage->drawRect;
  if (renderer->Open(showMessage->port, &rect) == 0) return status::kDisplayNotOpened;
  rendering = 1;
  renderer->Render(LiveRecord(record));
  StartRenderThread();
  return status::kOk;
}

} // namespace halvenor
