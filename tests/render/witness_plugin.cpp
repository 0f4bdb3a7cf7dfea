// A plug-in that draws what it knows: every frame begins with a `Testimony`. Its messages become
// lines of the file that HALVENOR_WITNESS_LOG names.
#include "tests/render/witness_plugin.h"

#include "platform/clock.h"
#include "protocol/records.h"
#include "protocol/settings.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace halvenor;

void* hostCookie = nullptr;
HostProc hostProc = nullptr;
GrafPtr port = nullptr;
std::mutex mutex;
Testimony testimony{};
std::atomic<bool> rendering{false};
std::thread thread;

void Note(const std::string& line) {
  std::puts("a library that prints"); // and must not disturb the frames on standard output
  std::fflush(stdout);
  if (const char* const path = std::getenv("HALVENOR_WITNESS_LOG")) {
    std::FILE* const log = std::fopen(path, "a");
    std::fprintf(log, "%s\n", line.c_str());
    std::fclose(log);
  }
}

void Draw() {
  const std::scoped_lock lock(mutex);
  const std::size_t rowBytes = static_cast<std::size_t>(port->bounds.right) * 4;
  const auto rows = static_cast<std::size_t>(port->bounds.bottom);
  std::vector<std::uint8_t> pixels(rowBytes * rows);
  for (std::size_t i = 0; i < pixels.size(); ++i)
    pixels[i] = WitnessPixel(i);
  testimony.time = clock::Now();
  // Bottom row first, as OpenGL would have it.
  std::memcpy(pixels.data() + rowBytes * (rows - 1), &testimony, sizeof testimony);
  const HalvenorFrame frame{pixels.data() + rowBytes * (rows - 1),
                            -static_cast<std::ptrdiff_t>(rowBytes), port->bounds.right,
                            port->bounds.bottom};
  port->frameFinished(port->frameRefCon, &frame);
}

void Show(GrafPtr where) {
  port = where;
  testimony.shownAt = clock::Now();
  Draw();
  rendering = true;
  clock::ThreadStarting();
  thread = std::thread([] {
    while (rendering) {
      Draw();
      clock::SleepFor(10000);
    }
    clock::ThreadGone();
  });
}

void Hide() {
  const clock::KeepAwake awake;
  rendering = false;
  if (thread.joinable()) thread.join();
}

HostMessage Request() {
  HostMessage message{};
  message.majorVersion = kHostMessageMajorVersion;
  message.minorVersion = kHostMessageMinorVersion;
  message.size = sizeof message;
  return message;
}

std::string StoredFade() {
  Settings settings{};
  HostMessage message = Request();
  message.body.pluginData = {&settings, sizeof settings, 0};
  if (hostProc(hostCookie, request::kGetPluginData, &message) != 0) return "error";
  return message.body.pluginData.sizeRead == 0 ? "nothing" : std::to_string(settings.fade);
}

std::string PascalText(const std::uint8_t* text) {
  return {reinterpret_cast<const char*>(text) + 1, text[0]};
}

Status Handle(FourCharCode code, VisualMessage* record, void*) {
  switch (code) {
  case message::kInit:
    Note("init " + StoredFade());
    break;
  case message::kShow:
    Note("show");
    Show(record->window.port);
    break;
  case message::kHide:
    Hide();
    Note("hide");
    break;
  case message::kCleanup:
    Note("clr");
    break;
  case message::kPlay:
    if (const TrackInfo* const track = record->track.trackInfo)
      Note("play " + PascalText(track->bytes + kTrackTitleOffset) + " by " +
           PascalText(track->bytes + kTrackArtistOffset));
    if (const StreamInfo* const stream = record->track.streamInfo)
      Note("play " + PascalText(stream->bytes + kStreamTitleOffset));
    break;
  case message::kEvent: {
    const std::scoped_lock lock(mutex);
    Note(std::string("key ") + static_cast<char>(record->event.event->message & 0xFF) + " after " +
         std::to_string(testimony.deliveries) + " deliveries");
    break;
  }
  case message::kRenderData: {
    const std::scoped_lock lock(mutex);
    ++testimony.deliveries;
    testimony.lastMark = record->render.renderData->waveform[0][0];
    break;
  }
  default:
    break;
  }
  return status::kOk;
}

} // namespace

extern "C" __attribute__((visibility("default"))) Status
iTunesPluginMainMachO(FourCharCode code, void* record, void*) {
  if (code != message::kInit) return status::kOk;
  PluginInitMessage init;
  std::memcpy(&init, record, sizeof init);
  hostCookie = init.appCookie;
  hostProc = init.appProc;
  HostMessage message = Request();
  RegistrationBody& body = message.body.registration;
  std::memcpy(body.name, "\x07Witness", 8);
  body.handler = &Handle;
  body.minWidth = body.minHeight = 32;
  body.maxWidth = body.maxHeight = 4096;
  return hostProc(hostCookie, request::kRegisterVisualPlugin, &message);
}
