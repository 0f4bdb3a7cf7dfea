// A plug-in that draws nothing and writes one line on standard error for each message it gets.
// The key 's' stores a block, which the next 'init' reads and tells; the key 'c' leaves full
// screen. HALVENOR_TEST_SHOW_STATUS is its answer to 'show'.
#include "protocol/records.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace halvenor;

struct Activation {
  void* appCookie;
  HostProc appProc;
};

GrafPtr shownPort = nullptr;

std::string Spelled(FourCharCode code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8)
    text += static_cast<char>(code >> shift);
  return text;
}

std::string PascalText(const std::uint8_t* text) {
  return {reinterpret_cast<const char*>(text) + 1, text[0]};
}

void Write(FourCharCode code, const std::string& details = {}) {
  std::fprintf(stderr, "[%s]%s\n", Spelled(code).c_str(), details.c_str());
}

// Whether the native window that is drawn into is still there: what X11 can be asked.
std::string PortState() {
  if (!shownPort || shownPort->kind != kHalvenorPortX11Window) return {};
  Display* const display = XOpenDisplay(shownPort->x11DisplayName);
  if (!display) return " no display";
  XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
  XWindowAttributes attributes;
  const bool there = XGetWindowAttributes(display, shownPort->x11Window, &attributes) != 0;
  XCloseDisplay(display);
  return there ? " window is there" : " window is gone";
}

void WriteWindow(FourCharCode code, const VisualWindowMessage& window) {
  const char* const kind = window.port->kind == kHalvenorPortX11Window ? "x11" : "wayland";
  const bool whole =
      std::memcmp(&window.drawRect, &window.port->bounds, sizeof window.drawRect) == 0;
  const bool native = window.port->kind == kHalvenorPortX11Window
                          ? window.port->x11Window != 0
                          : window.port->waylandDisplay && window.port->waylandSurface;
  Write(code, std::string(" ") + kind + (whole ? " whole " : " part ") +
                  (native ? "native " : "nothing ") + std::to_string(window.drawRect.right) + "x" +
                  std::to_string(window.drawRect.bottom) + " options " +
                  std::to_string(window.options));
}

void WriteTrack(FourCharCode code, const VisualTrackMessage& message) {
  std::string text;
  if (const TrackInfo* track = message.trackInfo) {
    text = " " + PascalText(track->bytes + kTrackTitleOffset) + " - " +
           PascalText(track->bytes + kTrackArtistOffset);
  }
  if (const StreamInfo* stream = message.streamInfo)
    text += " | " + PascalText(stream->bytes + kStreamTitleOffset);
  Write(code, text);
}

bool HasSound(const RenderVisualData& record) {
  return std::ranges::any_of(record.spectrum[0], [](std::uint8_t bin) { return bin > 20; });
}

void Request(const Activation& host, FourCharCode code, HostMessage& request) {
  request.majorVersion = kHostMessageMajorVersion;
  request.minorVersion = kHostMessageMinorVersion;
  request.size = sizeof request;
  host.appProc(host.appCookie, code, &request);
}

void Store(const Activation& host, char* block, std::uint32_t size) {
  HostMessage request{};
  request.body.pluginData = {block, size, 0};
  Request(host, request::kSetPluginData, request);
}

std::string Stored(const Activation& host) {
  char block[16];
  HostMessage request{};
  request.body.pluginData = {block, sizeof block, 0};
  Request(host, request::kGetPluginData, request);
  return {block, request.body.pluginData.sizeRead};
}

Status Key(const Activation& host, const EventRecord& event) {
  const char character = static_cast<char>(event.message);
  Write(message::kEvent, " " + std::to_string(static_cast<unsigned char>(character)) +
                             (event.what == kKeyRepeatEvent ? " repeated" : ""));
  if (character == 's') {
    char block[] = "kept";
    Store(host, block, 4);
    return status::kOk;
  }
  if (character != 'c') return status::kNotHandled;
  HostMessage request{};
  Request(host, request::kSetFullScreen, request);
  return status::kOk;
}

Status Handle(FourCharCode code, VisualMessage* record, void* refCon) {
  auto* host = static_cast<Activation*>(refCon);
  switch (code) {
  case message::kInit:
    host = new Activation{record->init.appCookie, record->init.appProc};
    record->init.refCon = host;
    Write(code, " stored: " + Stored(*host));
    return status::kOk;
  case message::kCleanup:
    delete host;
    break;
  case message::kEvent:
    return Key(*host, *record->event.event);
  case message::kShow:
    shownPort = record->window.port;
    [[fallthrough]];
  case message::kSetWindow: {
    WriteWindow(code, record->window);
    const char* const answer = std::getenv("HALVENOR_TEST_SHOW_STATUS");
    return answer ? std::atoi(answer) : status::kOk;
  }
  case message::kHide:
    Write(code, PortState());
    return status::kOk;
  case message::kPlay:
  case message::kChangeTrack: {
    WriteTrack(code, record->track);
    return status::kOk;
  }
  case message::kRenderData:
    Write(code, HasSound(*record->render.renderData) ? " sound" : "");
    return status::kOk;
  default:
    break;
  }
  Write(code);
  return status::kOk;
}

} // namespace

extern "C" __attribute__((visibility("default"))) Status
iTunesPluginMainMachO(FourCharCode code, void* record, void*) {
  if (code == message::kCleanup) return status::kOk;
  if (code != message::kInit) return status::kNotHandled;
  const auto* const init = static_cast<const PluginInitMessage*>(record);
  Activation host{init->appCookie, init->appProc};
  HostMessage request{};
  RegistrationBody& body = request.body.registration;
  constexpr char kName[] = "Recorder";
  body.name[0] = sizeof kName - 1;
  std::memcpy(body.name + 1, kName, sizeof kName - 1);
  body.options = kWantsIdleMessages | kWantsConfigure;
  body.handler = Handle;
  body.timeBetweenData = kDeliveryMilliseconds;
  body.minWidth = body.minHeight = 64;
  Request(host, request::kRegisterVisualPlugin, request);
  return status::kOk;
}
