#include "platform/agl_errors.h"

#include "platform/carbon.h"

#include <algorithm>
#include <array>

namespace {

thread_local GLenum pendingError = AGL_NO_ERROR;

struct ErrorText {
  GLenum code;
  const char* text;
};

constexpr ErrorText kErrorTexts[] = {
    {AGL_NO_ERROR, "no error"},
    {AGL_BAD_ATTRIBUTE, "unknown pixel format attribute"},
    {AGL_BAD_PIXELFORMAT, "no pixel format"},
    {AGL_BAD_CONTEXT, "no context, or one that is not current here or is current elsewhere"},
    {AGL_BAD_DRAWABLE, "the drawing port cannot be drawn to: no window or a window that is gone"},
    {AGL_BAD_VALUE, "value out of range"},
    {AGL_BAD_ENUM, "unknown parameter"},
    {AGL_BAD_FONT, "no such font, or a style or size it cannot have"},
    {AGL_NO_DISPLAY, "no connection to the window system, or no usable EGL driver"},
    {AGL_NO_OPENGL, "the graphics driver offers no OpenGL compatibility context"},
    {AGL_NO_BUFFER, "the graphics driver cannot make a frame buffer of this size"},
};

} // namespace

namespace halvenor::agl {

GLboolean Report(GLenum error) {
  if (pendingError == AGL_NO_ERROR) pendingError = error;
  return error == AGL_NO_ERROR ? GL_TRUE : GL_FALSE;
}

void Log(std::string_view text) {
  constexpr std::string_view kPrefix = "Halvenor platform: ";
  std::array<unsigned char, 256> message{};
  const auto end = std::copy(kPrefix.begin(), kPrefix.end(), message.begin() + 1);
  const auto length = std::min(text.size(), message.size() - 1 - kPrefix.size());
  std::copy_n(text.begin(), length, end);
  message[0] = static_cast<unsigned char>(kPrefix.size() + length);
  DebugStr(message.data());
}

} // namespace halvenor::agl

GLenum aglGetError(void) {
  const GLenum error = pendingError;
  pendingError = AGL_NO_ERROR;
  return error;
}

const GLubyte* aglErrorString(GLenum code) {
  const char* text = "unknown error";
  for (const ErrorText& entry : kErrorTexts)
    if (entry.code == code) text = entry.text;
  return reinterpret_cast<const GLubyte*>(text);
}
