#include "platform/driver/egl_window.h"

#include "platform/agl_errors.h"
#include "platform/driver/driver_library.h"
#include "platform/driver/render_target.h"

#include <GL/glext.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace halvenor::agl {
namespace {

EGLint Attribute(EGLDisplay display, EGLConfig config, EGLint name) {
  EGLint value = 0;
  eglGetConfigAttrib(display, config, name, &value);
  return value;
}

/// The config with exactly 8 bits a channel that suits a window best: its own visual before all,
/// no alpha, for the desktop would take it for translucence, and no depth, which is never used.
EGLConfig ChooseConfig(EGLDisplay display, EGLint visual) {
  const EGLint wanted[] = {EGL_SURFACE_TYPE,
                           EGL_WINDOW_BIT,
                           EGL_RENDERABLE_TYPE,
                           EGL_OPENGL_BIT,
                           EGL_RED_SIZE,
                           8,
                           EGL_GREEN_SIZE,
                           8,
                           EGL_BLUE_SIZE,
                           8,
                           EGL_NONE};
  EGLint count = 0;
  eglChooseConfig(display, wanted, nullptr, 0, &count);
  std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
  eglChooseConfig(display, wanted, configs.data(), count, &count);
  std::pair<int, EGLConfig> best{-1, nullptr};
  for (EGLConfig config : configs) {
    const auto has = [&](EGLint name, EGLint value) {
      return Attribute(display, config, name) == value;
    };
    if (!has(EGL_RED_SIZE, 8) || !has(EGL_GREEN_SIZE, 8) || !has(EGL_BLUE_SIZE, 8)) continue;
    const int merit = (has(EGL_NATIVE_VISUAL_ID, visual) ? 8 : 0) + (has(EGL_SAMPLES, 0) ? 4 : 0) +
                      (has(EGL_ALPHA_SIZE, 0) ? 2 : 0) + (has(EGL_DEPTH_SIZE, 0) ? 1 : 0);
    if (merit > best.first) best = {merit, config};
  }
  return best.second;
}

} // namespace

bool EglWindow::CreateSurface(void* nativeWindow, EGLint visual) {
  const EGLConfig config = ChooseConfig(display_, visual);
  if (config == nullptr) {
    Log("no EGL config with 8 bits a channel");
    return false;
  }
  surface_ = eglCreatePlatformWindowSurface(display_, config, nativeWindow, nullptr);
  if (surface_ == EGL_NO_SURFACE) LogEgl("eglCreatePlatformWindowSurface");
  return surface_ != EGL_NO_SURFACE;
}

void EglWindow::DestroySurface() {
  if (surface_ != EGL_NO_SURFACE) eglDestroySurface(display_, std::exchange(surface_, nullptr));
}

void EglWindow::Present(const Picture& picture) {
  if (picture.port.IsEmpty()) return;
  if (std::exchange(paced_, false)) eglSwapInterval(display_, 0);
  Follow(picture);
  const VisiblePart part = ClipToPort(picture);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
  glPushAttrib(GL_COLOR_BUFFER_BIT | GL_SCISSOR_BIT);
  glDrawBuffer(GL_BACK);
  glDisable(GL_SCISSOR_TEST);
  if (part.size != picture.port) {
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
  }
  if (!part.size.IsEmpty()) {
    glBindFramebuffer(GL_READ_FRAMEBUFFER,
                      static_cast<const RenderTarget*>(picture.buffer)->Name());
    glBlitFramebuffer(part.pictureX, part.pictureY, part.pictureX + part.size.width,
                      part.pictureY + part.size.height, part.portX, part.portY,
                      part.portX + part.size.width, part.portY + part.size.height,
                      GL_COLOR_BUFFER_BIT, GL_NEAREST);
  }
  glPopAttrib();
  if (!eglSwapBuffers(display_, surface_) && !std::exchange(loggedFailure_, true))
    LogEgl("eglSwapBuffers");
}

} // namespace halvenor::agl
