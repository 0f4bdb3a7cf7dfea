#include "gl/textured_quad.h"

#include "gl_calls/gl.h"

namespace halvenor {

void DrawTexturedQuad(float left, float bottom, float right, float top) {
  glBegin(GL_TRIANGLE_STRIP);
  glTexCoord2f(0.0F, 0.0F);
  glVertex3f(left, bottom, 0.0F);
  glTexCoord2f(1.0F, 0.0F);
  glVertex3f(right, bottom, 0.0F);
  glTexCoord2f(0.0F, 1.0F);
  glVertex3f(left, top, 0.0F);
  glTexCoord2f(1.0F, 1.0F);
  glVertex3f(right, top, 0.0F);
  glEnd();
}

} // namespace halvenor
