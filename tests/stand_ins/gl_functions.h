// The one list of the OpenGL functions that the plug-in uses. A call of a function that is not
// listed does not link. Signatures come from the GL headers.
//
// X(arity, name, kinds) with one letter an argument:
//   n number   e enumerant   p primitive   b blend factor   m clear mask   * pointer
#pragma once

#define HALVENOR_GL_FUNCTIONS(X)                                                                   \
  X(1, glBegin, "p")                                                                               \
  X(2, glBlendFunc, "bb")                                                                          \
  X(1, glCallList, "n")                                                                            \
  X(1, glClear, "m")                                                                               \
  X(4, glClearColor, "nnnn")                                                                       \
  X(4, glColor4f, "nnnn")                                                                          \
  X(2, glDeleteLists, "nn")                                                                        \
  X(1, glDisable, "e")                                                                             \
  X(3, glDrawArrays, "pnn")                                                                        \
  X(1, glEnable, "e")                                                                              \
  X(0, glEnd, "")                                                                                  \
  X(1, glGenLists, "n")                                                                            \
  X(0, glGetError, "")                                                                             \
  X(3, glInterleavedArrays, "en*")                                                                 \
  X(0, glLoadIdentity, "")                                                                         \
  X(2, glPixelStorei, "en")                                                                        \
  X(0, glPopMatrix, "")                                                                            \
  X(0, glPushMatrix, "")                                                                           \
  X(3, glRasterPos3f, "nnn")                                                                       \
  X(4, glRotatef, "nnnn")                                                                          \
  X(3, glScalef, "nnn")                                                                            \
  X(2, glTexCoord2f, "nn")                                                                         \
  X(3, glTranslatef, "nnn")                                                                        \
  X(2, glVertex2f, "nn")                                                                           \
  X(3, glVertex3f, "nnn")                                                                          \
  X(4, glViewport, "nnnn")

/// Enumerants that recorded calls show by name. Blend factors and primitives share small numbers
/// with others and have lists of their own.
#define HALVENOR_GL_ENUMERANTS(X)                                                                  \
  X(GL_BLEND)                                                                                      \
  X(GL_DEPTH_TEST)                                                                                 \
  X(GL_LINE_SMOOTH)                                                                                \
  X(GL_PACK_ALIGNMENT)                                                                             \
  X(GL_TEXTURE_2D)                                                                                 \
  X(GL_UNPACK_ALIGNMENT)                                                                           \
  X(GL_UNPACK_ROW_LENGTH)                                                                          \
  X(GL_V2F)                                                                                        \
  X(GL_V3F)                                                                                        \
  X(GL_T2F_V3F)

#define HALVENOR_GL_BLEND_FACTORS(X)                                                               \
  X(GL_ZERO)                                                                                       \
  X(GL_ONE)                                                                                        \
  X(GL_SRC_COLOR)                                                                                  \
  X(GL_ONE_MINUS_SRC_COLOR)                                                                        \
  X(GL_SRC_ALPHA)                                                                                  \
  X(GL_ONE_MINUS_SRC_ALPHA)                                                                        \
  X(GL_DST_COLOR)                                                                                  \
  X(GL_ONE_MINUS_DST_COLOR)

#define HALVENOR_GL_PRIMITIVES(X)                                                                  \
  X(GL_POINTS)                                                                                     \
  X(GL_LINES)                                                                                      \
  X(GL_LINE_LOOP)                                                                                  \
  X(GL_LINE_STRIP)                                                                                 \
  X(GL_TRIANGLES)                                                                                  \
  X(GL_TRIANGLE_STRIP)                                                                             \
  X(GL_TRIANGLE_FAN)                                                                               \
  X(GL_QUADS)

#define HALVENOR_GL_CLEAR_BITS(X)                                                                  \
  X(GL_COLOR_BUFFER_BIT)                                                                           \
  X(GL_DEPTH_BUFFER_BIT)                                                                           \
  X(GL_STENCIL_BUFFER_BIT)

/// The functions of the context layer that the stand-in has.
#define HALVENOR_AGL_FUNCTIONS(X)                                                                  \
  X(aglChoosePixelFormat)                                                                          \
  X(aglDestroyPixelFormat)                                                                         \
  X(aglCreateContext)                                                                              \
  X(aglDestroyContext)                                                                             \
  X(aglSetInteger)                                                                                 \
  X(aglEnable)                                                                                     \
  X(aglSetDrawable)                                                                                \
  X(aglSetCurrentContext)                                                                          \
  X(aglUpdateContext)                                                                              \
  X(aglSwapBuffers)                                                                                \
  X(aglGetError)                                                                                   \
  X(aglErrorString)                                                                                \
  X(GetFNum)                                                                                       \
  X(aglUseFont)
