// Four-character codes: how messages, requests and creators are named across the host boundary.
#pragma once

#include <cstdint>

namespace halvenor {

/// Four ASCII characters in one number, the first in the most significant byte ('init' is
/// 0x696E6974 on every machine).
using FourCharCode = std::uint32_t;

/// The code spelled by `text`, for example `Code("init")`.
consteval FourCharCode Code(const char (&text)[5]) {
  FourCharCode code = 0;
  for (int i = 0; i < 4; ++i)
    code = (code << 8) | static_cast<unsigned char>(text[i]);
  return code;
}

/// Messages that the host sends to the plug-in.
namespace message {
inline constexpr FourCharCode kInit = Code("init");
inline constexpr FourCharCode kCleanup = Code("clr ");
inline constexpr FourCharCode kConfigure = Code("cnfg");
inline constexpr FourCharCode kShow = Code("show");
inline constexpr FourCharCode kHide = Code("hide");
inline constexpr FourCharCode kSetWindow = Code("swin");
inline constexpr FourCharCode kRenderData = Code("vrnd");
inline constexpr FourCharCode kPlay = Code("vply");
inline constexpr FourCharCode kChangeTrack = Code("ctrk");
inline constexpr FourCharCode kPause = Code("vpau");
inline constexpr FourCharCode kUnpause = Code("vunp");
inline constexpr FourCharCode kStop = Code("vstp");
inline constexpr FourCharCode kEvent = Code("vevt");
inline constexpr FourCharCode kIdle = Code("null");
inline constexpr FourCharCode kSetPosition = Code("setp");
inline constexpr FourCharCode kEnable = Code("von ");
inline constexpr FourCharCode kDisable = Code("voff");
inline constexpr FourCharCode kUpdate = Code("vupd");
} // namespace message

/// Requests that the plug-in makes of the host.
namespace request {
inline constexpr FourCharCode kRegisterVisualPlugin = Code("rvis");
inline constexpr FourCharCode kGetPluginFileSpec = Code("pspc");
inline constexpr FourCharCode kGetPluginData = Code("gprf");
inline constexpr FourCharCode kSetPluginData = Code("sprf");
inline constexpr FourCharCode kSetFullScreen = Code("sful");
inline constexpr FourCharCode kSetFullScreenOptions = Code("sfop");
} // namespace request

/// Signed 32-bit status of a message or a request; values not named here are passed through.
using Status = std::int32_t;
namespace status {
inline constexpr Status kOk = 0;
inline constexpr Status kNotHandled = -4;
inline constexpr Status kOutOfMemory = -108;
inline constexpr Status kDisplayNotOpened = 1001;
inline constexpr Status kConfigurationMissing = -9874;
} // namespace status

} // namespace halvenor
