#include "platform/driver/foreign_context.h"

#include "platform/agl_errors.h"
#include "platform/driver/driver_library.h"

#include <GL/glx.h>

#include <dlfcn.h>
#include <type_traits>

namespace halvenor::agl {
namespace {

/// GLX of the library that the driver's functions come from.
class Glx {
public:
  Glx() {
    void* const library = dlopen("libGL.so.1", RTLD_LAZY);
    if (library == nullptr) return;
    const auto find = [library](const char* name, auto*& function) {
      function =
          reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
    };
    find("glXGetCurrentContext", getContext);
    find("glXGetCurrentDisplay", getDisplay);
    find("glXGetCurrentDrawable", getDrawable);
    find("glXGetCurrentReadDrawable", getReadDrawable);
    find("glXMakeContextCurrent", makeContextCurrent);
    find("glXMakeCurrent", makeCurrent);
    isThere_ = getContext != nullptr && getDisplay != nullptr && getDrawable != nullptr &&
               getReadDrawable != nullptr && makeContextCurrent != nullptr &&
               makeCurrent != nullptr;
  }

  /// The driver's library has been loaded before the first call.
  static const Glx& Get() {
    static const Glx glx;
    return glx;
  }

  [[nodiscard]] GLXContext CurrentContext() const { return isThere_ ? getContext() : nullptr; }

  decltype(::glXGetCurrentContext)* getContext = nullptr;
  decltype(::glXGetCurrentDisplay)* getDisplay = nullptr;
  decltype(::glXGetCurrentDrawable)* getDrawable = nullptr;
  decltype(::glXGetCurrentReadDrawable)* getReadDrawable = nullptr;
  decltype(::glXMakeContextCurrent)* makeContextCurrent = nullptr;
  decltype(::glXMakeCurrent)* makeCurrent = nullptr;

private:
  bool isThere_ = false;
};

} // namespace

ForeignContext ForeignContext::TakeAside() {
  ForeignContext foreign;
  foreign.api_ = eglQueryAPI();
  foreign.eglContext_ = eglGetCurrentContext();
  if (foreign.eglContext_ != EGL_NO_CONTEXT) {
    foreign.eglDisplay_ = eglGetCurrentDisplay();
    foreign.eglDraw_ = eglGetCurrentSurface(EGL_DRAW);
    foreign.eglRead_ = eglGetCurrentSurface(EGL_READ);
    eglMakeCurrent(foreign.eglDisplay_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  } else if (GLXContext context = Glx::Get().CurrentContext()) {
    const Glx& glx = Glx::Get();
    foreign.glxContext_ = context;
    foreign.glxDisplay_ = glx.getDisplay();
    foreign.glxDraw_ = glx.getDrawable();
    foreign.glxRead_ = glx.getReadDrawable();
    // EGL refuses to make anything current while GLX has the thread.
    glx.makeCurrent(foreign.glxDisplay_, None, nullptr);
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
    const Glx& glx = Glx::Get();
    const bool done = glxDraw_ == glxRead_
                          ? glx.makeCurrent(glxDisplay_, glxDraw_, glxContext_)
                          : glx.makeContextCurrent(glxDisplay_, glxDraw_, glxRead_, glxContext_);
    if (!done) Log("Putting back the host's GLX context failed");
  }
}

} // namespace halvenor::agl
