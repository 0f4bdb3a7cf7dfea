#include "renderer/surface/font_system.h"

#include "gl/diagnostics.h"
#include "gl_calls/gl.h"

#include <algorithm>

namespace halvenor {
namespace {

constexpr unsigned char kFontName[] = "\011Helvetica";
constexpr GLint kPlainStyle = 0;
constexpr GLsizei kGlyphs = 256;
constexpr long kFirstSize = 9;
// What the settings window offers at most. A stored block may ask for more, and letters as high as
// the window cost seconds a frame where there are many.
constexpr long kLargestSize = 128;
constexpr float kLineHeight = 1.5F; // in font sizes

} // namespace

GLuint FontSystem::fontList = 0;
long FontSystem::fontSize = 0;
Display* FontSystem::display = nullptr;

void FontSystem::Open(Display* newDisplay) {
  static std::int32_t firstTime = 1;
  std::int16_t family = 0;
  GetFNum(kFontName, &family);
  display = newDisplay;
  const GLuint base = glGenLists(kGlyphs);
  if (firstTime != 0) {
    firstTime = 0;
    fontSize = kFirstSize;
  }
  if (aglUseFont(display->Context(), family, kPlainStyle, static_cast<GLint>(fontSize), 0, kGlyphs,
                 static_cast<GLint>(base)) != GL_FALSE) {
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    if (const GLenum error = aglGetError(); error != AGL_NO_ERROR)
      aglReportError("Problem creating font", error);
    fontList = base;
  } else {
    aglReportError("aglUseFont failed");
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glDeleteLists(base, kGlyphs);
    fontList = 0;
  }
}

void FontSystem::Close() {
  if (fontList != 0) glDeleteLists(fontList, kGlyphs);
}

void FontSystem::SetSize(long size) {
  size = std::min(size, kLargestSize);
  if (size == fontSize) return;
  if (fontList != 0) glDeleteLists(fontList, kGlyphs);
  fontSize = size;
  Open(display);
}

void FontSystem::DrawCString(const char* text, float x, float y) {
  glRasterPos3f(x, y, 0.0F);
  const float lineStep = static_cast<float>(fontSize) * kLineHeight;
  for (; *text != '\0'; ++text) {
    if (*text == '\n') {
      y -= 2.0F * lineStep / static_cast<float>(display->Height());
      glRasterPos3f(x, y, 0.0F);
    } else {
      glCallList(fontList + static_cast<unsigned char>(*text));
    }
  }
}

} // namespace halvenor
