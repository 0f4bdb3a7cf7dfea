// Windows that EGL shows pictures in.
#pragma once

#include "platform/presenter.h"

#include <EGL/egl.h>

namespace halvenor::agl {

/// Owns an EGL window surface, and copies pictures to it. A kind of window derives from it, and
/// keeps the native window alive until the surface is gone.
class EglWindow : public Presenter {
public:
  ~EglWindow() override { DestroySurface(); }

  [[nodiscard]] void* Surface() const override { return surface_; }
  void Present(const Picture& picture) override;

protected:
  explicit EglWindow(EGLDisplay display) : display_(display) {}

  /// Makes the surface on `nativeWindow` (as eglCreatePlatformWindowSurface takes it), in the
  /// format of the native visual, 0 for any. False, with the reason logged, on failure.
  bool CreateSurface(void* nativeWindow, EGLint visual);
  void DestroySurface();

  /// Lets the native window follow the port's size and scale.
  virtual void Follow(const Picture& /*picture*/) {}

private:
  EGLDisplay display_;
  EGLSurface surface_ = EGL_NO_SURFACE;
  bool paced_ = true; ///< the surface still waits for the display's refresh
  bool loggedFailure_ = false;
};

} // namespace halvenor::agl
