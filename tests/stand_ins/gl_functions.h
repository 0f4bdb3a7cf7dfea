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

/// The functions of the platform layer that have stand-ins.
#define HALVENOR_PLATFORM_FUNCTIONS                                                                \
  aglChoosePixelFormat, aglDestroyPixelFormat, aglCreateContext, aglDestroyContext, aglSetInteger, \
      aglEnable, aglSetDrawable, aglSetCurrentContext, aglUpdateContext, aglSwapBuffers,           \
      aglCreatePBuffer, aglDestroyPBuffer, aglTexImagePBuffer, aglSetPBuffer, aglGetVirtualScreen, \
      aglGetError, aglErrorString, GetFNum, aglUseFont, CFBundleGetBundleWithIdentifier,           \
      CFBundleCopyResourcesDirectoryURL, CFBundleCopyPrivateFrameworksURL, CFBundleCreate,         \
      CFBundleLoadExecutable, CFBundleGetFunctionPointerForName,                                   \
      CFURLCreateCopyAppendingPathComponent, CFURLGetFileSystemRepresentation, CFRelease
