#include "gl/diagnostics.h"

#include "gl_calls/gl.h"
#include "platform/carbon.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace halvenor {
namespace {

struct GLErrorText {
  GLenum code;
  const char* text;
};

constexpr GLErrorText kGLErrorTexts[] = {
    {GL_INVALID_ENUM, "GL Error: Invalid enumeration"},
    {GL_INVALID_VALUE, "GL Error: Invalid value"},
    {GL_INVALID_OPERATION, "GL Error: Invalid operation"},
    {GL_STACK_OVERFLOW, "GL Error: Stack overflow"},
    {GL_STACK_UNDERFLOW, "GL Error: Stack underflow"},
    {GL_OUT_OF_MEMORY, "GL Error: Out of memory"},
};

const char* TextOf(GLenum error) {
  for (const GLErrorText& entry : kGLErrorTexts)
    if (entry.code == error) return entry.text;
  return "Unknown GL error";
}

} // namespace

void cstr2pstr(unsigned char* pascalText, const char* cText) {
  const std::size_t length = strnlen(cText, kPascalTextLength);
  pascalText[0] = static_cast<unsigned char>(length);
  std::memcpy(pascalText + 1, cText, length);
}

void DebugLog(const char* format, ...) {
  char text[kPascalBufferSize];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  unsigned char pascalText[kPascalBufferSize];
  cstr2pstr(pascalText, text);
  DebugStr(pascalText);
}

void aglReportError(const char* message, GLenum error) {
  DebugLog("%s : %s", message, reinterpret_cast<const char*>(aglErrorString(error)));
}

void aglReportError(const char* message) {
  aglReportError(message, aglGetError());
}

void glCheckError() {
  const GLenum error = glGetError();
  if (error != GL_NO_ERROR) DebugLog("%s", TextOf(error));
}

} // namespace halvenor
