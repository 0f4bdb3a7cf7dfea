// The stand-in for the context layer: every function of platform/agl.h, without any graphics.
//
// Contexts, drawables, current contexts and pending errors behave as platform/agl.h promises; the
// values of arguments are recorded and not looked at. A swap hands an offscreen port a frame of
// zeros, unless a pbuffer is the target. `GetFNum` gives one family; `aglUseFont` takes the sizes
// that the real one takes and leaves the lists empty.
//
// Faults by `Fail`: no format ("aglChoosePixelFormat"), no context ("aglCreateContext", or
// "aglSetCurrentContext" with `AGL_NO_OPENGL`, where the real layer fails), no buffer
// ("aglUpdateContext", "aglCreatePBuffer" or "aglTexImagePBuffer", `AGL_NO_BUFFER`), no font
// ("aglUseFont", `AGL_BAD_FONT`; a failing "GetFNum" gives family 0 and leaves no error).
#pragma once

#include <cstdint>

namespace halvenor::stand_ins {

inline constexpr std::int16_t kFontFamily = 7;

/// Objects that were made and not destroyed.
[[nodiscard]] std::int64_t LiveContexts();
[[nodiscard]] std::int64_t LivePixelFormats();
[[nodiscard]] std::int64_t LivePBuffers();

/// The number of the context that is current on the calling thread (as in recorded calls), or 0.
[[nodiscard]] int CurrentContextNumber();

} // namespace halvenor::stand_ins
