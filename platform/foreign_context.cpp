#include "platform/foreign_context.h"

#include "platform/agl_errors.h"

#include <GL/glx.h>

namespace halvenor::agl {

ForeignContext ForeignContext::TakeAside() {
  ForeignContext foreign;
  foreign.api_ = eglQueryAPI();
  foreign.eglContext_ = eglGetCurrentContext();
  if (foreign.eglContext_ != EGL_NO_CONTEXT) {
    foreign.eglDisplay_ = eglGetCurrentDisplay();
    foreign.eglDraw_ = eglGetCurrentSurface(EGL_DRAW);
    foreign.eglRead_ = eglGetCurrentSurface(EGL_READ);
    eglMakeCurrent(foreign.eglDisplay_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  } else if (GLXContext context = glXGetCurrentContext()) {
    foreign.glxContext_ = context;
    foreign.glxDisplay_ = glXGetCurrentDisplay();
    foreign.glxDraw_ = glXGetCurrentDrawable();
    foreign.glxRead_ = glXGetCurrentReadDrawable();
    // EGL refuses to make anything current while GLX has the thread.
    glXMakeCurrent(foreign.glxDisplay_, None, nullptr);
  }
  eglBindAPI(EGL_OPENGL_API);
  return foreign;
}

void ForeignContext::PutBack() const {
  if (api_ != EGL_NONE) eglBindAPI(api_);
  if (eglContext_ != EGL_NO_CONTEXT) {
    if (!eglMakeCurrent(eglDisplay_, eglDraw_, eglRead_, eglContext_))
      LogEgl("Putting back the host's EGL context");
  } else if (glxContext_ != nullptr) {
    // Contexts of the first GLX know no separate drawable for reading.
    const bool done = glxDraw_ == glxRead_
                          ? glXMakeCurrent(glxDisplay_, glxDraw_, glxContext_)
                          : glXMakeContextCurrent(glxDisplay_, glxDraw_, glxRead_, glxContext_);
    if (!done) Log("Putting back the host's GLX context failed");
  }
}

} // namespace halvenor::agl
