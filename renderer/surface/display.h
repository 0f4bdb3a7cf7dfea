// The drawing surface: a GL context on the host's port and rectangle.
#pragma once

#include "platform/agl.h"

#include <cstdint>

namespace halvenor {

/// Owned by the `Renderer`, which closes it before it goes. Every operation needs the plug-in's
/// lock; each leaves the context current on the calling thread but `Close`, which leaves none.
class Display {
public:
  /// Makes the contexts and attaches them to `port`. Failures show up in the `Resize` that follows.
  void Open(GrafPtr port);

  /// Draws into `rect` of `port` (device pixels, y down) from now on. 1 on success; 0 when closed
  /// or `port` is null, and after an AGL error, which it has reported ("Failed to resize openGL
  /// window").
  std::int32_t Resize(GrafPtr port, const Rect* rect);

  /// Destroys the contexts and the pixel format. Does nothing when nothing is open.
  void Close();

  /// Makes the context current, so that what was made on it can be used or released.
  void MakeCurrent();

  /// Points the context back at the window, at the start of the window pass of a frame.
  void StartRendering();
  /// Shows the frame.
  void EndRendering();

  [[nodiscard]] std::int32_t Width() const { return width; }
  [[nodiscard]] std::int32_t Height() const { return height; }
  [[nodiscard]] AGLContext Context() const { return mainContext; }
  /// Width by height. The height may be 0.
  [[nodiscard]] float ScreenRatio() const {
    return static_cast<float>(width) / static_cast<float>(height);
  }
  /// Name of the buffers of this opening: 1, 2, 3, ...
  [[nodiscard]] std::int32_t BufferName() const { return bufferName; }

private:
  AGLContext mainContext = nullptr;
  AGLContext spareContext = nullptr; ///< shares the buffers; never made current
  AGLPixelFormat pixelFormat = nullptr;
  GrafPtr port = nullptr;
  std::int32_t bufferName = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

} // namespace halvenor
