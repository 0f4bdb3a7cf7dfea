// The one list of the OpenGL functions that the plug-in calls; gl_table.h makes a table of it.
// Signatures come from the GL headers.
//
// X(name, kinds), with one letter an argument for those who show calls:
//   n number   e enumerant   p primitive   b blend factor   m clear mask
//   * pointer, which shows what it points at when that is names or a string to be read
#pragma once

#define HALVENOR_GL_FUNCTIONS(X)                                                                   \
  X(glBegin, "p")                                                                                  \
  X(glBindProgramARB, "en")                                                                        \
  X(glBindTexture, "en")                                                                           \
  X(glBlendFunc, "bb")                                                                             \
  X(glCallList, "n")                                                                               \
  X(glClear, "m")                                                                                  \
  X(glClearColor, "nnnn")                                                                          \
  X(glColor4f, "nnnn")                                                                             \
  X(glDeleteLists, "nn")                                                                           \
  X(glDeleteProgramsARB, "n*")                                                                     \
  X(glDeleteTextures, "n*")                                                                        \
  X(glDisable, "e")                                                                                \
  X(glDrawArrays, "pnn")                                                                           \
  X(glEnable, "e")                                                                                 \
  X(glEnd, "")                                                                                     \
  X(glGenLists, "n")                                                                               \
  X(glGenProgramsARB, "n*")                                                                        \
  X(glGenTextures, "n*")                                                                           \
  X(glGetError, "")                                                                                \
  X(glGetIntegerv, "e*")                                                                           \
  X(glGetString, "e")                                                                              \
  X(glHint, "ee")                                                                                  \
  X(glInterleavedArrays, "en*")                                                                    \
  X(glLoadIdentity, "")                                                                            \
  X(glPixelStorei, "en")                                                                           \
  X(glPopMatrix, "")                                                                               \
  X(glProgramLocalParameter4fARB, "ennnnn")                                                        \
  X(glProgramStringARB, "een*")                                                                    \
  X(glPushMatrix, "")                                                                              \
  X(glRasterPos3f, "nnn")                                                                          \
  X(glRotatef, "nnnn")                                                                             \
  X(glScalef, "nnn")                                                                               \
  X(glTexCoord2f, "nn")                                                                            \
  X(glTexImage2D, "enennnee*")                                                                     \
  X(glTexParameteri, "eee")                                                                        \
  X(glTranslatef, "nnn")                                                                           \
  X(glVertex2f, "nn")                                                                              \
  X(glVertex3f, "nnn")                                                                             \
  X(glViewport, "nnnn")                                                                            \
  X(gluBuild2DMipmaps, "ennnee*")                                                                  \
  X(gluCheckExtension, "**")
