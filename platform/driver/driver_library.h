// EGL, OpenGL and GLU as they are installed. Nothing is linked with them: they are loaded when a
// context is wanted that a driver draws, and may be missing. Inside namespace halvenor::agl the
// names of the functions listed here mean the loaded ones.
#pragma once

#include "gl_calls/gl_table.h"

#include <EGL/egl.h>

#include <string>
#include <string_view>

namespace halvenor::agl {

#define HALVENOR_EGL_FUNCTIONS(X)                                                                  \
  X(eglBindAPI)                                                                                    \
  X(eglChooseConfig)                                                                               \
  X(eglCreateContext)                                                                              \
  X(eglCreatePlatformWindowSurface)                                                                \
  X(eglDestroyContext)                                                                             \
  X(eglDestroySurface)                                                                             \
  X(eglGetConfigAttrib)                                                                            \
  X(eglGetCurrentContext)                                                                          \
  X(eglGetCurrentDisplay)                                                                          \
  X(eglGetCurrentSurface)                                                                          \
  X(eglGetError)                                                                                   \
  X(eglGetPlatformDisplay)                                                                         \
  X(eglGetProcAddress)                                                                             \
  X(eglInitialize)                                                                                 \
  X(eglMakeCurrent)                                                                                \
  X(eglQueryAPI)                                                                                   \
  X(eglQueryString)                                                                                \
  X(eglSwapBuffers)                                                                                \
  X(eglSwapInterval)                                                                               \
  X(eglTerminate)

/// What the platform layer itself asks of OpenGL.
#define HALVENOR_DRIVER_FUNCTIONS(X)                                                               \
  X(glBindBuffer)                                                                                  \
  X(glBindFramebuffer)                                                                             \
  X(glBindRenderbuffer)                                                                            \
  X(glBitmap)                                                                                      \
  X(glBlitFramebuffer)                                                                             \
  X(glCheckFramebufferStatus)                                                                      \
  X(glClear)                                                                                       \
  X(glClearColor)                                                                                  \
  X(glClearDepth)                                                                                  \
  X(glColorMask)                                                                                   \
  X(glDeleteFramebuffers)                                                                          \
  X(glDeleteRenderbuffers)                                                                         \
  X(glDepthMask)                                                                                   \
  X(glDisable)                                                                                     \
  X(glDrawBuffer)                                                                                  \
  X(glEndList)                                                                                     \
  X(glFinish)                                                                                      \
  X(glFramebufferRenderbuffer)                                                                     \
  X(glFramebufferTexture2D)                                                                        \
  X(glGenFramebuffers)                                                                             \
  X(glGenRenderbuffers)                                                                            \
  X(glGetError)                                                                                    \
  X(glGetIntegerv)                                                                                 \
  X(glGetString)                                                                                   \
  X(glNewList)                                                                                     \
  X(glPixelStorei)                                                                                 \
  X(glPopAttrib)                                                                                   \
  X(glPopClientAttrib)                                                                             \
  X(glPushAttrib)                                                                                  \
  X(glPushClientAttrib)                                                                            \
  X(glReadPixels)                                                                                  \
  X(glRenderbufferStorage)                                                                         \
  X(glScissor)                                                                                     \
  X(glTexImage2D)                                                                                  \
  X(glTexParameteri)                                                                               \
  X(glViewport)

template <class Signature>
struct Loaded;
template <class Result, class... Arguments>
struct Loaded<Result(Arguments...)> {
  Result operator()(Arguments... arguments) const { return function(arguments...); }
  Result (*function)(Arguments...) = nullptr;
};

// NOLINTBEGIN(readability-identifier-naming): the names are the libraries'.
#define HALVENOR_LOADED(name) inline Loaded<decltype(::name)> name;
HALVENOR_EGL_FUNCTIONS(HALVENOR_LOADED)
HALVENOR_DRIVER_FUNCTIONS(HALVENOR_LOADED)
#undef HALVENOR_LOADED
// NOLINTEND(readability-identifier-naming)

/// Loads the libraries at the first call. False when one or one of the functions is missing; then
/// none of the functions may be called. Any thread.
bool LoadDriver();
/// What is missing, after a `LoadDriver` that was false.
const std::string& MissingForDriver();

/// The driver's functions for the plug-in; after `LoadDriver`.
const gl_calls::Table& DriverCalls();

/// Writes "`what` failed (EGL error 0x...)" to the debug log, reading this thread's EGL error.
void LogEgl(std::string_view what);

} // namespace halvenor::agl
