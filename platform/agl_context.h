// An OpenGL context and the port it draws to.
#pragma once

#include "platform/agl.h"
#include "platform/backend.h"
#include "platform/picture_pace.h"

#include <cstdint>
#include <memory>

struct HalvenorPixelFormat {
  bool depth = false; ///< a depth buffer is wanted
};

/// What the plug-in takes for a drawable's back buffer is a buffer of the buffer rectangle's size,
/// which the backend shows in the port. A pbuffer takes the port's place until a port is attached
/// again. While nothing is attached, or the port's buffer cannot be made, drawing goes nowhere.
///
/// A frame begins where the context becomes current, unless it is new, and ends where the port is
/// swapped or the context let go of. What the port says of it counts when it begins.
///
/// Members return the error that the C functions leave pending. Threads: see agl.h.
struct HalvenorContext {
  explicit HalvenorContext(const HalvenorPixelFormat& format) : depth_(format.depth) {}
  ~HalvenorContext() = default;
  HalvenorContext(const HalvenorContext&) = delete;
  HalvenorContext& operator=(const HalvenorContext&) = delete;

  /// The context that is current on this thread, or null.
  static HalvenorContext* Current();
  /// Lets go of the thread's context, and puts back what was current before.
  static void LetGo();

  GLenum Attach(GrafPtr port);
  /// Makes the context current and directs drawing to `pbuffer`, a buffer of this context's that
  /// stays alive until drawing is directed elsewhere or `Forget` is called.
  GLenum Attach(const halvenor::agl::Buffer& pbuffer);
  /// Directs drawing to nothing if `pbuffer` is what it is directed to. The context is current.
  void Forget(const halvenor::agl::Buffer& pbuffer);
  /// Binds what drawing is directed to, after another buffer was bound. The context is current.
  void Rebind() const;
  GLenum SetBufferRect(const GLint* values);
  void UseBufferRect() { usesRect_ = true; }
  GLenum MakeCurrent();
  GLenum Update();
  GLenum Swap();
  /// Releases everything on the GL's side, which has to come before its end. Fails without effect
  /// when it is current on another thread.
  GLenum Unrealize();

  /// Who draws; only while the context is current.
  [[nodiscard]] halvenor::agl::Backend& Drawer() const { return *backend_; }

private:
  GLenum Realize();
  GLenum MakeCurrentAnywhere();
  void BeginFrame();
  GLenum Present();
  GLenum UsePort();
  GLenum UseBuffer();
  void ReadBounds();
  [[nodiscard]] halvenor::agl::Size BufferSize() const;

  bool depth_;
  GrafPtr port_ = nullptr; ///< what drawing is directed to, unless it is `pbuffer_`
  const halvenor::agl::Buffer* pbuffer_ = nullptr; ///< only while `port_` is null
  GrafPtr lastPort_ = nullptr; ///< the port attached last; `bounds_` and the backend's belong to it
  // Copied when the host's thread calls: a frame may not look.
  halvenor::agl::Size bounds_;
  halvenor::agl::Size output_; ///< empty: pictures are not scaled
  GLint surfaceScale_ = 0;
  GLint rectX_ = 0;
  GLint rectY_ = 0;
  halvenor::agl::Size rect_;
  bool usesRect_ = false;

  std::shared_ptr<halvenor::agl::Backend> backend_; ///< null before the first use
  bool triedPort_ = false;                          ///< the backend was told of `lastPort_`
  HalvenorFrameUse frameUse_ = kHalvenorFrameSeen;  ///< of this frame; never `Timely`
  std::uint64_t frameBegan_ = 0;
  halvenor::agl::PicturePace pace_;
  std::unique_ptr<halvenor::agl::Buffer> buffer_;
  halvenor::agl::Size triedSize_; ///< the size for which `buffer_` was made, or could not be
};
