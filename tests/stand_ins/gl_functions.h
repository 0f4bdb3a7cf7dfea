// The one list of the OpenGL functions that the plug-in uses. A call of a function that is not
// listed does not link. Signatures come from the GL headers.
//
// X(arity, name, kinds) with one letter an argument:
//   n number   e enumerant   p primitive   b blend factor   m clear mask
//   * pointer, which shows what it points at when that is names or a string to be read
#pragma once

#define HALVENOR_GL_FUNCTIONS(X)                                                                   \
  X(1, glBegin, "p")                                                                               \
  X(2, glBindProgramARB, "en")                                                                     \
  X(2, glBindTexture, "en")                                                                        \
  X(2, glBlendFunc, "bb")                                                                          \
  X(1, glCallList, "n")                                                                            \
  X(1, glClear, "m")                                                                               \
  X(4, glClearColor, "nnnn")                                                                       \
  X(4, glColor4f, "nnnn")                                                                          \
  X(2, glDeleteLists, "nn")                                                                        \
  X(2, glDeleteProgramsARB, "n*")                                                                  \
  X(2, glDeleteTextures, "n*")                                                                     \
  X(1, glDisable, "e")                                                                             \
  X(3, glDrawArrays, "pnn")                                                                        \
  X(1, glEnable, "e")                                                                              \
  X(0, glEnd, "")                                                                                  \
  X(1, glGenLists, "n")                                                                            \
  X(2, glGenProgramsARB, "n*")                                                                     \
  X(2, glGenTextures, "n*")                                                                        \
  X(0, glGetError, "")                                                                             \
  X(2, glGetIntegerv, "e*")                                                                        \
  X(1, glGetString, "e")                                                                           \
  X(2, glHint, "ee")                                                                               \
  X(3, glInterleavedArrays, "en*")                                                                 \
  X(0, glLoadIdentity, "")                                                                         \
  X(2, glPixelStorei, "en")                                                                        \
  X(0, glPopMatrix, "")                                                                            \
  X(6, glProgramLocalParameter4fARB, "ennnnn")                                                     \
  X(4, glProgramStringARB, "een*")                                                                 \
  X(0, glPushMatrix, "")                                                                           \
  X(3, glRasterPos3f, "nnn")                                                                       \
  X(4, glRotatef, "nnnn")                                                                          \
  X(3, glScalef, "nnn")                                                                            \
  X(2, glTexCoord2f, "nn")                                                                         \
  X(9, glTexImage2D, "enennnee*")                                                                  \
  X(3, glTexParameteri, "eee")                                                                     \
  X(3, glTranslatef, "nnn")                                                                        \
  X(2, glVertex2f, "nn")                                                                           \
  X(3, glVertex3f, "nnn")                                                                          \
  X(4, glViewport, "nnnn")                                                                         \
  X(7, gluBuild2DMipmaps, "ennnee*")                                                               \
  X(2, gluCheckExtension, "**")

/// Enumerants that recorded calls show by name. Blend factors and primitives share small numbers
/// with others and have lists of their own.
#define HALVENOR_GL_ENUMERANTS(X)                                                                  \
  X(GL_BGRA)                                                                                       \
  X(GL_BLEND)                                                                                      \
  X(GL_CLAMP)                                                                                      \
  X(GL_CLAMP_TO_EDGE)                                                                              \
  X(GL_DEPTH_TEST)                                                                                 \
  X(GL_EXTENSIONS)                                                                                 \
  X(GL_FRAGMENT_PROGRAM_ARB)                                                                       \
  X(GL_FRONT)                                                                                      \
  X(GL_LINEAR)                                                                                     \
  X(GL_LINEAR_MIPMAP_LINEAR)                                                                       \
  X(GL_LINE_SMOOTH)                                                                                \
  X(GL_NEAREST)                                                                                    \
  X(GL_NICEST)                                                                                     \
  X(GL_PACK_ALIGNMENT)                                                                             \
  X(GL_PERSPECTIVE_CORRECTION_HINT)                                                                \
  X(GL_PROGRAM_ERROR_POSITION_ARB)                                                                 \
  X(GL_PROGRAM_ERROR_STRING_ARB)                                                                   \
  X(GL_PROGRAM_FORMAT_ASCII_ARB)                                                                   \
  X(GL_REPEAT)                                                                                     \
  X(GL_RGB)                                                                                        \
  X(GL_RGBA)                                                                                       \
  X(GL_T2F_V3F)                                                                                    \
  X(GL_TEXTURE_2D)                                                                                 \
  X(GL_TEXTURE_MAG_FILTER)                                                                         \
  X(GL_TEXTURE_MIN_FILTER)                                                                         \
  X(GL_TEXTURE_WRAP_S)                                                                             \
  X(GL_TEXTURE_WRAP_T)                                                                             \
  X(GL_UNPACK_ALIGNMENT)                                                                           \
  X(GL_UNPACK_ROW_LENGTH)                                                                          \
  X(GL_UNSIGNED_BYTE)                                                                              \
  X(GL_UNSIGNED_INT_8_8_8_8_REV)                                                                   \
  X(GL_V2F)                                                                                        \
  X(GL_V3F)                                                                                        \
  X(GL_VERTEX_PROGRAM_ARB)

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

/// The functions of the platform layer that have stand-ins.
#define HALVENOR_PLATFORM_FUNCTIONS(X)                                                             \
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
  X(aglCreatePBuffer)                                                                              \
  X(aglDestroyPBuffer)                                                                             \
  X(aglTexImagePBuffer)                                                                            \
  X(aglSetPBuffer)                                                                                 \
  X(aglGetVirtualScreen)                                                                           \
  X(aglGetError)                                                                                   \
  X(aglErrorString)                                                                                \
  X(GetFNum)                                                                                       \
  X(aglUseFont)                                                                                    \
  X(CFBundleGetBundleWithIdentifier)                                                               \
  X(CFBundleCopyResourcesDirectoryURL)                                                             \
  X(CFBundleCopyPrivateFrameworksURL)                                                              \
  X(CFBundleCreate)                                                                                \
  X(CFBundleLoadExecutable)                                                                        \
  X(CFBundleGetFunctionPointerForName)                                                             \
  X(CFURLCreateCopyAppendingPathComponent)                                                         \
  X(CFURLGetFileSystemRepresentation)                                                              \
  X(CFRelease)
