#include "renderer/surface/display.h"

#include "gl/diagnostics.h"
#include "gl_calls/gl.h"

#include <algorithm>

namespace halvenor {
namespace {

constexpr GLint kPixelFormatAttributes[] = {
    AGL_RGBA, AGL_DOUBLEBUFFER,   AGL_RED_SIZE,    8,       AGL_ALPHA_SIZE, 8, AGL_DEPTH_SIZE,
    24,       AGL_CLOSEST_POLICY, AGL_NO_RECOVERY, AGL_NONE};

} // namespace

void Display::Open(GrafPtr newPort) {
  aglGetError(); // clears an error from before this opening
  pixelFormat = aglChoosePixelFormat(nullptr, 0, kPixelFormatAttributes);
  ++bufferName;
  spareContext = aglCreateContext(pixelFormat, nullptr);
  aglSetInteger(spareContext, AGL_BUFFER_NAME, &bufferName);
  if (spareContext != nullptr) {
    mainContext = aglCreateContext(pixelFormat, nullptr);
    aglSetInteger(mainContext, AGL_BUFFER_NAME, &bufferName);
  }
  aglSetDrawable(spareContext, newPort);
  aglSetDrawable(mainContext, newPort);
  aglSetCurrentContext(mainContext);
  aglUpdateContext(mainContext);
}

std::int32_t Display::Resize(GrafPtr newPort, const Rect* rect) {
  if (mainContext == nullptr || newPort == nullptr) return 0;
  Rect bounds;
  GetPortBounds(newPort, &bounds);
  width = std::max(0, rect->right - rect->left); // a rectangle inside out is an empty one
  height = std::max(0, rect->bottom - rect->top);
  port = newPort;
  aglSetCurrentContext(mainContext);
  // The buffer rectangle has its origin at the bottom left of the port.
  const GLint bufferRect[] = {rect->left, bounds.bottom - rect->bottom, width, height};
  aglSetInteger(mainContext, AGL_BUFFER_RECT, bufferRect);
  aglEnable(mainContext, AGL_BUFFER_RECT);
  glViewport(0, 0, width, height);
  aglUpdateContext(mainContext);
  if (const GLenum error = aglGetError(); error != AGL_NO_ERROR) {
    aglReportError("Failed to resize openGL window", error);
    return 0;
  }
  return 1;
}

void Display::Close() {
  aglSetCurrentContext(nullptr);
  if (mainContext != nullptr) aglDestroyContext(mainContext);
  if (spareContext != nullptr) aglDestroyContext(spareContext);
  aglDestroyPixelFormat(pixelFormat);
  mainContext = nullptr;
  spareContext = nullptr;
  pixelFormat = nullptr;
}

void Display::MakeCurrent() {
  aglSetCurrentContext(mainContext);
}

void Display::StartRendering() {
  aglSetDrawable(mainContext, nullptr);
  aglSetDrawable(mainContext, port);
  aglSetCurrentContext(mainContext);
}

void Display::EndRendering() {
  aglSwapBuffers(mainContext);
}

} // namespace halvenor
