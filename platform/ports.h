// What a host offers to a plug-in: drawing ports, the areas to draw in; its front window; an alert;
// notices.
//
// A port is a plain record that the host fills and keeps alive, unchanged but for its sizes and
// what `SetFrameUse` says, from 'show' until 'hide' has returned. The sizes change on the host's
// thread only, before the 'swin' that tells of it; they are read only while the host's thread
// attaches the port or follows a change (`aglUpdateContext`), never in a frame.
#pragma once

#include "platform/export.h"

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// A rectangle in device pixels, y down.
typedef struct Rect {
  int16_t top;
  int16_t left;
  int16_t bottom;
  int16_t right;
} Rect;

typedef enum HalvenorPortKind {
  kHalvenorPortX11Window = 1,
  kHalvenorPortWaylandSurface = 2,
  kHalvenorPortOffscreen = 3,
} HalvenorPortKind;

/// One finished frame of an offscreen port: rows of RGBA bytes. Alpha is what the drawing left, not
/// how opaque the picture is: a picture is shown opaque.
typedef struct HalvenorFrame {
  const uint8_t* topRow; ///< first byte of the top row; valid during the callback only
  ptrdiff_t stride;      ///< bytes from one row to the row below it; may be negative
  int32_t width;         ///< pixels: the width of the port's output or bounds
  int32_t height;        ///< pixels: the height of the port's output or bounds
} HalvenorFrame;

/// Receives each finished frame, on whichever thread drew it, while the plug-in's lock is held:
/// copy and return. Never send a message from here and never wait for the host's thread.
typedef void (*HalvenorFrameProc)(void* refCon, const HalvenorFrame* frame);

/// What becomes of a frame. All that a plug-in does besides drawing is the same with each, as are
/// the errors of OpenGL for what is no drawing, and textures, programs and lists that are made.
typedef enum HalvenorFrameUse {
  kHalvenorFrameSeen = 0, ///< it is shown
  /// It is shown where frames come in time; late ones are `kHalvenorFrameTrailsOnly`, up to three
  /// in a row, until at least 50 a second are drawn.
  kHalvenorFrameTimely = 1,
  /// Nobody will see it: what is drawn for the port is dropped, and offscreen buffers, which later
  /// frames may show, are drawn as always.
  kHalvenorFrameTrailsOnly = 2,
  /// Nothing is drawn at all; offscreen buffers keep what they hold.
  kHalvenorFrameUndrawn = 3,
} HalvenorFrameUse;

typedef struct HalvenorPort {
  HalvenorPortKind kind;
  Rect bounds; ///< device pixels; top and left are 0 for a port that is a whole window

  /// The size of the window in device pixels where that is not the size of `bounds`: pictures are
  /// then shown as large as fits, in the middle of black. 0: they are shown as they are.
  int32_t outputWidth;
  int32_t outputHeight;

  /// X11: name of the display, null for $DISPLAY. The platform layer opens its own connection.
  const char* x11DisplayName;
  /// X11: the window, which the host has mapped or will map.
  uintptr_t x11Window;

  /// Wayland: the host's `struct wl_display*` and `struct wl_surface*`. Nobody else may attach
  /// buffers to the surface.
  void* waylandDisplay;
  void* waylandSurface;
  /// Wayland: the surface's buffer scale, which the pictures are shown with; their size must be a
  /// multiple of it. 0: whatever it is.
  int32_t waylandScale;

  /// Offscreen: called with each finished frame; null to finish frames without reading them back.
  HalvenorFrameProc frameFinished;
  void* frameRefCon;
  /// Offscreen: the top row of the host's own memory for finished frames, which the callback then
  /// gets, and the bytes, a multiple of 4, from a row to the row below it. Both may change while no
  /// frame is drawn. Null: frames come in this layer's memory.
  uint8_t* destination;
  ptrdiff_t destinationStride;

  /// A `HalvenorFrameUse`, which only `SetFrameUse` changes once the port is shown.
  int32_t frameUse;
} HalvenorPort;

typedef HalvenorPort* GrafPtr;

/// Writes the bounds of `port` to `bounds` and returns `bounds`. A null port has an empty
/// rectangle. Any thread that may use the port.
HALVENOR_PLATFORM Rect* GetPortBounds(GrafPtr port, Rect* bounds);

/// Says what frames are for that begin in `port` from now on. The first one after 'show' is seen
/// whatever this says. Any thread.
HALVENOR_PLATFORM void SetFrameUse(GrafPtr port, HalvenorFrameUse use);

/// A window of the host, opaque to the plug-in: the number that the window system or the host's
/// toolkit gives it. To be compared, never to be followed.
typedef void* WindowRef;

/// Tells which window of the host is in front, so that others can stand before it. Null, as at the
/// start: none. Any thread.
HALVENOR_PLATFORM void SetFrontWindow(WindowRef window);

/// From now on `sound` sounds the alerts of the plug-in; null puts back the bell of the terminal on
/// standard error, which is silent when that is none. `ticks` are sixtieths of a second. It runs on
/// the thread that gives the alert, possibly while the plug-in's lock is held: never send a message
/// from there and never wait.
typedef void (*HalvenorAlertProc)(int ticks);
HALVENOR_PLATFORM void SetAlertSound(HalvenorAlertProc sound);

/// Receives notices of the plug-in's modules: `message` says in UTF-8 what failed, why, and what a
/// person can do about it; it is valid during the call. Runs on the host's thread, mostly inside a
/// message and possibly while the plug-in's lock is held: copy and return, and show it later.
typedef void (*HalvenorNoticeProc)(void* refCon, const char* message);
/// From now on `receiver` gets the notices; null, as at the start: nobody does. Host's thread.
HALVENOR_PLATFORM void SetNoticeReceiver(HalvenorNoticeProc receiver, void* refCon);
/// Hands `message` to the host's receiver, for failures that nobody would see otherwise. Returns 0
/// when there is no receiver. Host's thread.
HALVENOR_PLATFORM int GiveNotice(const char* message);

#ifdef __cplusplus
}
#endif
