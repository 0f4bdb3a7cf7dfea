// The EGL display behind a port.
#pragma once

#include <EGL/egl.h>

namespace halvenor::agl {

/// An EGL display that can make OpenGL contexts without a config and make them current without a
/// surface. What opened it says when it ends: `Terminate`.
class EglDisplay {
public:
  /// Takes over the platform display of `native`; false, with the reason logged, when it cannot be
  /// initialized or lacks what this layer needs. After `LoadDriver`.
  bool Initialize(EGLenum platform, void* native);
  void Terminate();

  [[nodiscard]] EGLDisplay Handle() const { return handle_; }
  /// Whether it draws on the processor, where finished frames are in memory anyway.
  [[nodiscard]] bool IsSoftware() const { return software_; }
  /// Whether it was `Initialize` that brought the display to life, not somebody else before.
  [[nodiscard]] bool IsFirstUser() const { return firstUser_; }

private:
  EGLDisplay handle_ = EGL_NO_DISPLAY;
  bool firstUser_ = false;
  bool software_ = false;
};

/// Whether the EGL display, or the client for `EGL_NO_DISPLAY`, has the extension.
bool HasEglExtension(EGLDisplay display, const char* name);

} // namespace halvenor::agl
