// OpenGL that does all but draw.
#pragma once

#include "gl_calls/gl_table.h"

namespace halvenor::gl_calls {

/// `table` with the functions taken out that draw into the bound target, and those that only say
/// where a vertex or a character is to be drawn. Whatever else the calls change or find, they
/// change and find as before.
constexpr Table WithoutDrawing(Table table) {
  table.glBegin = [](GLenum) {};
  table.glCallList = [](GLuint) {};
  table.glClear = [](GLbitfield) {};
  table.glDrawArrays = [](GLenum, GLint, GLsizei) {};
  table.glEnd = [] {};
  table.glRasterPos3f = [](GLfloat, GLfloat, GLfloat) {};
  table.glTexCoord2f = [](GLfloat, GLfloat) {};
  table.glVertex2f = [](GLfloat, GLfloat) {};
  table.glVertex3f = [](GLfloat, GLfloat, GLfloat) {};
  return table;
}

} // namespace halvenor::gl_calls
