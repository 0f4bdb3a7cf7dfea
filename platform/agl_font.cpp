// The functions of agl.h that concern fonts.
#include "platform/agl.h"
#include "platform/agl_context.h"
#include "platform/agl_errors.h"
#include "platform/glyph_bitmaps.h"

#include <string>

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
  context->Drawer().CompileLists(static_cast<GLuint>(base), *glyphs);
  return GL_TRUE;
}
