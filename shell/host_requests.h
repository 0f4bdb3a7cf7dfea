// The requests that the plug-in makes of its host: one operation each, every one returning the
// host's status uninterpreted. From inside any of them the host may send further messages.
#pragma once

#include "protocol/records.h"

#include <cstdint>

namespace halvenor {

/// The general form: completes the header of `record` and calls the host. A null `record` stands
/// for a zero-filled one.
Status ITCallApplication(void* appCookie, HostProc appProc, FourCharCode request,
                         HostMessage* record);

/// `record` carries the registration in its body.
Status PlayerRegisterVisualPlugin(void* appCookie, HostProc appProc, HostMessage* record);

/// The host fills `fileSpec`.
Status PlayerGetPluginFileSpec(void* appCookie, HostProc appProc, FileSpec* fileSpec);

/// Reads at most `size` bytes of the stored block into `data`. `sizeRead` may be null.
Status PlayerGetPluginData(void* appCookie, HostProc appProc, void* data, std::uint32_t size,
                           std::uint32_t* sizeRead);

/// Stores `size` bytes.
Status PlayerSetPluginData(void* appCookie, HostProc appProc, void* data, std::uint32_t size);

/// Enters or leaves full screen.
Status PlayerSetFullScreen(void* appCookie, HostProc appProc, bool fullScreen);

/// What the plug-in would like full screen to be.
Status PlayerSetFullScreenOptions(void* appCookie, HostProc appProc, std::int16_t minBitDepth,
                                  std::int16_t maxBitDepth, std::int16_t preferredBitDepth,
                                  std::int16_t desiredWidth, std::int16_t desiredHeight);

} // namespace halvenor
