// A context of somebody else's, EGL or GLX, that was current on a thread.
#pragma once

#include <EGL/egl.h>

// The libraries' own names. NOLINTBEGIN(bugprone-reserved-identifier)
struct _XDisplay;
struct __GLXcontextRec;
// NOLINTEND(bugprone-reserved-identifier)

namespace halvenor::agl {

/// Use it on one thread only. Its objects are the other's: nothing here keeps them alive.
class ForeignContext {
public:
  /// Remembers what is current on this thread, lets go of it, and selects EGL's OpenGL.
  static ForeignContext TakeAside();

  /// Makes it current again on this thread, where none may be current now, and selects the EGL
  /// client API that was selected. A context that has vanished meanwhile is logged.
  void PutBack() const;

private:
  EGLenum api_ = EGL_NONE;
  EGLDisplay eglDisplay_ = EGL_NO_DISPLAY;
  EGLContext eglContext_ = EGL_NO_CONTEXT;
  EGLSurface eglDraw_ = EGL_NO_SURFACE;
  EGLSurface eglRead_ = EGL_NO_SURFACE;
  _XDisplay* glxDisplay_ = nullptr;
  __GLXcontextRec* glxContext_ = nullptr;
  unsigned long glxDraw_ = 0;
  unsigned long glxRead_ = 0;
};

} // namespace halvenor::agl
