#include "tests/raster/mesa.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <gtest/gtest.h>

namespace halvenor {

Framebuffer MakeFramebuffer(GLint format, int width, int height) {
  Framebuffer made{};
  glGenTextures(1, &made.texture);
  glBindTexture(GL_TEXTURE_2D, made.texture);
  glTexImage2D(GL_TEXTURE_2D, 0, format, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  glBindTexture(GL_TEXTURE_2D, 0);
  glGenFramebuffers(1, &made.framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, made.framebuffer);
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, made.texture, 0);
  EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), static_cast<GLenum>(GL_FRAMEBUFFER_COMPLETE));
  glClear(GL_COLOR_BUFFER_BIT);
  return made;
}

std::vector<std::uint8_t> ReadPixels(int width, int height) {
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) *
                                   static_cast<std::size_t>(height) * 4);
  glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
  return pixels;
}

Mesa::Mesa(int width, int height) {
  display_ = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  EXPECT_TRUE(eglInitialize(display_, nullptr, nullptr));
  EXPECT_TRUE(eglBindAPI(EGL_OPENGL_API));
  context_ = eglCreateContext(display_, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
  EXPECT_TRUE(eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_));
  MakeFramebuffer(GL_RGBA8, width, height);
  glViewport(0, 0, width, height);
}

Mesa::~Mesa() {
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  eglDestroyContext(display_, context_);
}

} // namespace halvenor
