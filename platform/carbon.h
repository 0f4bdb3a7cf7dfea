// Operating-system services under the names by which the plug-in knows them. Everything here
// stands on the C++ library alone.
#pragma once

#include "platform/export.h"
#include "platform/ports.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// A length-prefixed string: one length byte, then that many characters, no terminator.
typedef const unsigned char* ConstStr255Param;

/// Writes one message to the debug log (see debug_log.h). Any thread.
HALVENOR_PLATFORM void DebugStr(ConstStr255Param message);

/// Sounds the alert (see `SetAlertSound`) for `ticks` sixtieths of a second where that can be
/// chosen. Does not wait for its end. Any thread.
HALVENOR_PLATFORM void SysBeep(int16_t ticks);

/// The window that the host has in front, or null (see `SetFrontWindow`). Any thread.
HALVENOR_PLATFORM WindowRef FrontWindow(void);

/// A zero-filled block of `size` bytes, or null when there is no memory. Release it with
/// `DisposePtr`. Any thread.
HALVENOR_PLATFORM void* NewPtrClear(int32_t size);
/// Releases a block of `NewPtrClear`; null is allowed.
HALVENOR_PLATFORM void DisposePtr(void* block);

/// A point on the platform's clock (see clock.h), in nanoseconds.
typedef uint64_t AbsoluteTime;
/// An interval: milliseconds when 0 or more, negated microseconds when negative.
typedef int32_t Duration;

/// Now. Any thread.
HALVENOR_PLATFORM AbsoluteTime UpTime(void);
/// `later` - `earlier`, in negated microseconds, rounded up, whenever they fit 31 bits, else in
/// milliseconds, saturating at 2^31 - 1; 0 when `later` is not after `earlier`.
HALVENOR_PLATFORM Duration AbsoluteDeltaToDuration(AbsoluteTime later, AbsoluteTime earlier);

/// Lets another thread run.
HALVENOR_PLATFORM void YieldToAnyThread(void);

typedef struct RGBColor {
  uint16_t red;
  uint16_t green;
  uint16_t blue;
} RGBColor;

/// Hue is a fraction of a full turn, lightness the mean of the largest and smallest component.
typedef struct HSLColor {
  uint16_t hue;
  uint16_t saturation;
  uint16_t lightness;
} HSLColor;

/// Conversions between the two, rounded to nearest; a gray has hue and saturation 0. Any thread.
HALVENOR_PLATFORM void RGB2HSL(const RGBColor* rgb, HSLColor* hsl);
HALVENOR_PLATFORM void HSL2RGB(const HSLColor* hsl, RGBColor* rgb);

#ifdef __cplusplus
}
#endif
