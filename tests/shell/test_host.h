// A host for the handler's suites: answers requests as it is told to and sends messages.
#pragma once

#include "protocol/visual_plugin_data.h"
#include "shell/plugin_state.h"
#include "shell/registration.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

extern "C" halvenor::Status iTunesPluginMainMachO(halvenor::FourCharCode message, void* messageInfo,
                                                  void* refCon);

namespace halvenor {

/// What the last message brought as its reference constant.
inline void* LastReference() {
  const MessageScope lock;
  return visualPluginData;
}

class TestHost {
public:
  TestHost() {
    PluginInitMessage message = {10, 1, this, Answer};
    iTunesPluginMainMachO(message::kInit, &message, nullptr);
    requests.clear();
  }
  ~TestHost() {
    if (refCon != nullptr) Send(message::kCleanup);
  }
  TestHost(const TestHost&) = delete;
  TestHost& operator=(const TestHost&) = delete;

  /// What is answered, what happens inside a request, and what was asked, in order.
  std::map<FourCharCode, Status> answers;
  std::map<FourCharCode, std::function<void()>> inside;
  std::vector<std::string> requests;
  HostMessage lastRequest{};
  std::vector<std::uint8_t> storedBlock;
  void* refCon = nullptr;

  [[nodiscard]] VisualPluginData* Record() const { return static_cast<VisualPluginData*>(refCon); }

  Status Init() {
    VisualMessage message{};
    message.init = {10, 1, 0, this, Answer, 0, nullptr};
    const Status result = VisualPluginHandler(message::kInit, &message, nullptr);
    refCon = message.init.refCon;
    return result;
  }

  Status Send(FourCharCode code, VisualMessage message = {}) {
    void* sentWith = refCon;
    if (code == message::kCleanup) refCon = nullptr;
    return VisualPluginHandler(code, &message, sentWith);
  }
  Status Show(GrafPtr port, std::uint32_t options = 0) {
    return SendWindow(message::kShow, port, port->bounds, options);
  }
  Status SendWindow(FourCharCode code, GrafPtr port, const Rect& rect, std::uint32_t options) {
    VisualMessage message{};
    message.window = {port, rect, options};
    return Send(code, message);
  }
  Status SendTracks(FourCharCode code, TrackInfo* track, StreamInfo* stream) {
    VisualMessage message{};
    message.track = {track, stream};
    return Send(code, message);
  }
  Status SendData(RenderVisualData* data, std::uint32_t timeStamp = 0) {
    VisualMessage message{};
    message.render = {data, timeStamp};
    return Send(message::kRenderData, message);
  }
  Status SendEvent(std::uint16_t kind, std::uint32_t word) {
    EventRecord event = {kind, word, 0, 0, 0, 0};
    VisualMessage message{};
    message.event = {&event};
    return Send(message::kEvent, message);
  }

private:
  static Status Answer(void* cookie, FourCharCode code, HostMessage* message) {
    return static_cast<TestHost*>(cookie)->Take(code, message);
  }

  Status Take(FourCharCode code, HostMessage* message) {
    lastRequest = *message;
    std::string& name = requests.emplace_back();
    for (int shift = 24; shift >= 0; shift -= 8)
      name += static_cast<char>(code >> shift & 0xFF);
    if (code == request::kGetPluginFileSpec)
      std::memset(message->body.fileSpec.fileSpec, 0x5A, kFileSpecSize);
    if (code == request::kGetPluginData) {
      PluginDataBody& body = message->body.pluginData;
      body.sizeRead = static_cast<std::uint32_t>(storedBlock.size());
      std::copy(storedBlock.begin(), storedBlock.end(), static_cast<std::uint8_t*>(body.data));
    }
    if (const auto found = inside.find(code); found != inside.end()) found->second();
    return answers[code];
  }
};

/// A length-prefixed string written to `target`.
inline void PutPascal(std::uint8_t* target, std::string_view text) {
  target[0] = static_cast<std::uint8_t>(text.size());
  std::memcpy(target + 1, text.data(), text.size());
}

} // namespace halvenor
