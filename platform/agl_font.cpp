// The functions of agl.h that concern fonts.
#define GL_GLEXT_PROTOTYPES
#include "platform/agl.h"
#include "platform/agl_context.h"
#include "platform/agl_errors.h"
#include "platform/glyph_bitmaps.h"

#include <GL/glext.h>

#include <string>

namespace {

using halvenor::agl::Glyph;

void CompileList(GLuint list, const Glyph& glyph) {
  // Compiling a bitmap of no size, such as a blank's, leaves Mesa with GL_OUT_OF_MEMORY: one
  // clear pixel instead.
  static constexpr GLubyte kClear[4] = {};
  const bool isBlank = glyph.rows.empty();
  glNewList(list, GL_COMPILE);
  glBitmap(isBlank ? 1 : glyph.width, isBlank ? 1 : glyph.height, static_cast<GLfloat>(-glyph.left),
           static_cast<GLfloat>(-glyph.bottom), static_cast<GLfloat>(glyph.advance), 0.0F,
           isBlank ? kClear : glyph.rows.data());
  glEndList();
}

void CompileLists(GLuint base, const std::vector<Glyph>& glyphs) {
  glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
  for (const Glyph& glyph : glyphs)
    CompileList(base++, glyph);
  glPopClientAttrib();
}

} // namespace

void GetFNum(const unsigned char* name, int16_t* family) {
  const auto* characters = reinterpret_cast<const char*>(name + 1);
  *family = halvenor::agl::FindFamily(std::string(characters, name[0]));
}

GLboolean aglUseFont(AGLContext context, GLint family, GLint style, GLint size, GLint first,
                     GLint count, GLint base) {
  using halvenor::agl::Report;
  if (context == nullptr || HalvenorContext::Current() != context) return Report(AGL_BAD_CONTEXT);
  if (style != 0 || size < 1 || size > 512) return Report(AGL_BAD_FONT);
  if (first < 0 || count < 0 || count > 256 || first > 256 - count || base < 1)
    return Report(AGL_BAD_VALUE);
  const auto glyphs = halvenor::agl::DrawGlyphs(family, size, first, count);
  if (!glyphs) return Report(AGL_BAD_FONT);
  CompileLists(static_cast<GLuint>(base), *glyphs);
  return GL_TRUE;
}
