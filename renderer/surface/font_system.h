// Plain text over the picture, with the bitmap glyphs of one system font.
#pragma once

#include "renderer/surface/display.h"

#include <cstdint>

namespace halvenor {

/// There is one font for the whole process. Every operation but `GetSize` needs the display's
/// context current on the calling thread and the plug-in's lock.
class FontSystem {
public:
  FontSystem() = delete;

  /// Makes the glyphs on the context of `display`, which must outlive `Close`. Without a font it
  /// reports "aglUseFont failed", and text draws nothing.
  static void Open(Display* display);

  /// Deletes the glyphs. To be called once for each `Open`.
  static void Close();

  /// Makes the glyphs again, `size` pixels high (at most 128), if that is not their size already.
  /// Costly.
  static void SetSize(long size);

  /// Pixels: 0 before the first `Open`, then 9 until `SetSize` changes it.
  static std::int32_t GetSize() { return static_cast<std::int32_t>(fontSize); }

  /// Draws `text` (Mac OS Roman) from (x, y) in normalized device coordinates, with the current
  /// color and blending. A line feed starts a new line, 1.5 sizes lower, at the starting x.
  /// Nothing wraps; a text that starts outside the viewport draws nothing until a line feed brings
  /// it back.
  static void DrawCString(const char* text, float x, float y);

private:
  static GLuint fontList; ///< first of 256 display lists; 0: no font
  static long fontSize;
  static Display* display;
};

} // namespace halvenor
