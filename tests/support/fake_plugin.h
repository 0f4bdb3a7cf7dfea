// A plug-in module for tests. By itself it writes one line on standard error for each message and
// draws what it knows into offscreen ports; a test that loads it may take its messages instead.
#pragma once

#include "protocol/records.h"

#include <cstddef>
#include <cstdint>
#include <dlfcn.h>
#include <functional>
#include <string>

namespace halvenor {

/// The module's state for this process. What is empty, the module does by itself.
struct FakePlugin {
  std::function<Status(FourCharCode, void* record)> entry;
  std::function<Status(FourCharCode, VisualMessage*, void* refCon)> handler;
  std::function<void(const std::string& line)> told; ///< gets the lines
  VisualHandlerProc registered; ///< the handler that registers, for an entry of the test's own
};

/// Loads the module and yields its state.
inline FakePlugin& LoadedFakePlugin(const char* module) {
  void* const handle = dlopen(module, RTLD_NOW | RTLD_LOCAL);
  return *reinterpret_cast<FakePlugin* (*)()>(dlsym(handle, "HalvenorFakePlugin"))();
}

/// The first bytes of each frame that it draws.
struct Testimony {
  std::uint64_t time;    ///< of this frame, on the plug-in's clock
  std::uint64_t shownAt; ///< when 'show' came
  std::uint32_t deliveries;
  std::uint32_t lastMark; ///< the first waveform byte of the last record
};

/// Every other byte of a frame, by its place in memory, where the bottom row comes first.
constexpr std::uint8_t FakePixel(std::size_t place) {
  return static_cast<std::uint8_t>(place * 7 / 3);
}

/// A request as the plug-in sends it.
inline HostMessage EmptyRequest() {
  HostMessage message{};
  message.majorVersion = kHostMessageMajorVersion;
  message.minorVersion = kHostMessageMinorVersion;
  message.size = sizeof message;
  return message;
}

} // namespace halvenor
