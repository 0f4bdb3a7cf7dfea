// A pair of offscreen buffers: one is drawn into while the other, the frame before, is read.
#pragma once

#include "platform/agl.h"

#include <cstdint>

namespace halvenor {

/// Not created, or created with a context; every operation but `Create` does nothing while it is
/// not created. It has no context of its own: it points the window's at its buffers, and the caller
/// points it back. The owner calls `Destroy` while the context exists. All operations need the
/// plug-in's lock; those that draw or release need the context current or make it so.
class PBuffer {
public:
  /// Makes both buffers, transparent black, releasing an earlier pair first. When a buffer cannot
  /// be made, reports "pBuffers not supported" and is not created, with nothing left behind.
  void Create(AGLContext newContext);

  /// Releases both buffers.
  void Destroy();

  /// Points the context at the current buffer. True when created.
  bool StartDrawing();

  /// Completes the current buffer, whose image `BindTexture` selects from now on, and makes the
  /// other one the current.
  void EndDrawing();

  /// Binds the image of the frame completed last.
  void BindTexture() const;
  /// Its texture name; 0 when not created.
  [[nodiscard]] GLuint CurrentTexture() const;

protected:
  /// One buffer with the texture that shows it.
  struct Buffer {
    AGLPbuffer pbuffer = nullptr;
    GLuint texture = 0;
  };

  /// Makes one buffer and its texture; false, and empty, when it cannot be made. The texture is
  /// left bound.
  [[nodiscard]] bool MakeBuffer(Buffer& buffer) const;
  static void ReleaseBuffer(Buffer& buffer);
  /// Points the context at `buffer`.
  void DrawInto(const Buffer& buffer) const;
  static void ReportIfPending(const char* message);

  AGLContext context = nullptr; ///< null: not created
  Buffer buffers[2];
  std::int32_t width = 512;
  std::int32_t height = 512;
  std::int32_t current = 0; ///< index of the buffer that is drawn into
};

} // namespace halvenor
