// The key 's' stores a block, which the next 'init' reads and tells; the key 'c' leaves full
// screen. HALVENOR_TEST_SHOW_STATUS is the answer to 'show'.
#include "tests/support/fake_plugin.h"

#include "platform/clock.h"
#include "protocol/settings.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace halvenor {
namespace {

FakePlugin plugin;

struct Activation {
  void* appCookie;
  HostProc appProc;
};

GrafPtr port = nullptr;
std::mutex mutex; // for the testimony
Testimony testimony{};
std::atomic<bool> rendering{false};
std::thread thread;

std::string PascalText(const std::uint8_t* text) {
  return {reinterpret_cast<const char*>(text) + 1, text[0]};
}

void Write(FourCharCode code, const std::string& details = {}) {
  std::string line = "[";
  for (int shift = 24; shift >= 0; shift -= 8)
    line += static_cast<char>(code >> shift);
  line += "]" + details;
  if (plugin.told) return plugin.told(line);
  std::fprintf(stderr, "%s\n", line.c_str());
}

void Draw() {
  const std::scoped_lock lock(mutex);
  const std::size_t rowBytes = static_cast<std::size_t>(port->bounds.right) * 4;
  const auto rows = static_cast<std::size_t>(port->bounds.bottom);
  std::vector<std::uint8_t> pixels(rowBytes * rows);
  for (std::size_t i = 0; i < pixels.size(); ++i)
    pixels[i] = FakePixel(i);
  testimony.time = clock::Now();
  // Bottom row first, as OpenGL would have it.
  std::memcpy(pixels.data() + rowBytes * (rows - 1), &testimony, sizeof testimony);
  const HalvenorFrame frame{pixels.data() + rowBytes * (rows - 1),
                            -static_cast<std::ptrdiff_t>(rowBytes), port->bounds.right,
                            port->bounds.bottom};
  port->frameFinished(port->frameRefCon, &frame);
}

void StartDrawing() {
  std::puts("a library that prints"); // and must not disturb the frames on standard output
  std::fflush(stdout);
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

void StopDrawing() {
  const clock::KeepAwake awake;
  rendering = false;
  if (thread.joinable()) thread.join();
}

// Whether the native window that is drawn into is still there: what X11 can be asked.
std::string PortState() {
  if (!port || port->kind != kHalvenorPortX11Window) return {};
  Display* const display = XOpenDisplay(port->x11DisplayName);
  if (!display) return " no display";
  XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
  XWindowAttributes attributes;
  const bool there = XGetWindowAttributes(display, port->x11Window, &attributes) != 0;
  XCloseDisplay(display);
  return there ? " window is there" : " window is gone";
}

Status TakeWindow(FourCharCode code, const VisualWindowMessage& window) {
  const HalvenorPort& shown = *window.port;
  const bool isX11 = shown.kind == kHalvenorPortX11Window;
  const bool isOffscreen = shown.kind == kHalvenorPortOffscreen;
  const bool whole = std::memcmp(&window.drawRect, &shown.bounds, sizeof window.drawRect) == 0;
  const bool native = isX11         ? shown.x11Window != 0
                      : isOffscreen ? shown.frameFinished != nullptr
                                    : shown.waylandDisplay && shown.waylandSurface;
  Write(code,
        std::string(isX11         ? " x11"
                    : isOffscreen ? " offscreen"
                                  : " wayland") +
            (whole ? " whole " : " part ") + (native ? "native " : "nothing ") +
            std::to_string(window.drawRect.right) + "x" + std::to_string(window.drawRect.bottom) +
            " options " + std::to_string(window.options) +
            (code == message::kShow && shown.frameUse == kHalvenorFrameTimely ? " timely" : ""));
  if (code == message::kShow) {
    port = window.port;
    if (isOffscreen) StartDrawing();
  }
  const char* const answer = std::getenv("HALVENOR_TEST_SHOW_STATUS");
  return answer ? std::atoi(answer) : status::kOk;
}

void TakeTrack(FourCharCode code, const VisualTrackMessage& message) {
  std::string text;
  if (const TrackInfo* const track = message.trackInfo) {
    text = " " + PascalText(track->bytes + kTrackTitleOffset) + " - " +
           PascalText(track->bytes + kTrackArtistOffset);
  }
  if (const StreamInfo* const stream = message.streamInfo)
    text += " | " + PascalText(stream->bytes + kStreamTitleOffset);
  Write(code, text);
}

void TakeRecord(const VisualRenderMessage& render) {
  const RenderVisualData& record = *render.renderData;
  {
    const std::scoped_lock lock(mutex);
    ++testimony.deliveries;
    testimony.lastMark = record.waveform[0][0];
  }
  const bool sounds =
      std::ranges::any_of(record.spectrum[0], [](std::uint8_t bin) { return bin > 20; });
  Write(message::kRenderData,
        (sounds ? " sound " : " silence ") + std::to_string(render.timeStampID));
}

// What is stored: the fade of a settings block, or the text that the key 's' has left.
std::string Stored(const Activation& host) {
  Settings block{};
  HostMessage request = EmptyRequest();
  request.body.pluginData = {&block, sizeof block, 0};
  if (host.appProc(host.appCookie, request::kGetPluginData, &request) != 0) return "error";
  const std::size_t size = request.body.pluginData.sizeRead;
  return size == sizeof block ? std::to_string(block.fade)
                              : std::string(reinterpret_cast<const char*>(&block), size);
}

Status TakeKey(const Activation& host, const EventRecord& event) {
  const auto character = static_cast<std::uint8_t>(event.message);
  Write(message::kEvent,
        " " + std::to_string(character) + (event.what == kKeyRepeatEvent ? " repeated" : ""));
  HostMessage request = EmptyRequest();
  char block[] = "kept";
  if (character == 's') request.body.pluginData = {block, 4, 0};
  if (character != 's' && character != 'c') return status::kNotHandled;
  host.appProc(host.appCookie, character == 's' ? request::kSetPluginData : request::kSetFullScreen,
               &request);
  return status::kOk;
}

Status Handle(FourCharCode code, VisualMessage* record, void* refCon) {
  if (plugin.handler) return plugin.handler(code, record, refCon);
  auto* host = static_cast<Activation*>(refCon);
  switch (code) {
  case message::kInit:
    host = new Activation{record->init.appCookie, record->init.appProc};
    record->init.refCon = host;
    Write(code, " stored: " + Stored(*host));
    return status::kOk;
  case message::kEvent:
    return TakeKey(*host, *record->event.event);
  case message::kShow:
  case message::kSetWindow:
    return TakeWindow(code, record->window);
  case message::kPlay:
  case message::kChangeTrack:
    TakeTrack(code, record->track);
    return status::kOk;
  case message::kRenderData:
    TakeRecord(record->render);
    return status::kOk;
  case message::kHide:
    StopDrawing();
    break;
  case message::kCleanup:
    delete host;
    break;
  default:
    break;
  }
  Write(code, code == message::kHide ? PortState() : "");
  return status::kOk;
}

} // namespace

extern "C" __attribute__((visibility("default"))) FakePlugin* HalvenorFakePlugin() {
  plugin.registered = Handle;
  return &plugin;
}

extern "C" __attribute__((visibility("default"))) Status
iTunesPluginMainMachO(FourCharCode code, void* record, void*) {
  if (plugin.entry) return plugin.entry(code, record);
  if (code == message::kCleanup) return status::kOk;
  if (code != message::kInit) return status::kNotHandled;
  const auto* const init = static_cast<const PluginInitMessage*>(record);
  HostMessage message = EmptyRequest();
  RegistrationBody& body = message.body.registration;
  std::memcpy(body.name,
              "\x04"
              "Fake",
              5);
  body.options = kWantsIdleMessages | kWantsConfigure;
  body.handler = Handle;
  body.timeBetweenData = kDeliveryMilliseconds;
  body.minWidth = body.minHeight = 32;
  body.maxWidth = body.maxHeight = 4096;
  return init->appProc(init->appCookie, request::kRegisterVisualPlugin, &message);
}

} // namespace halvenor
