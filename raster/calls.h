// What each function of the table does to a context's state. GL's rules hold: a call that is wrong
// sets an error and does nothing else. Calls that are not allowed between glBegin and glEnd are
// kept from here there.
#pragma once

#include "raster/state.h"

#include <GL/gl.h>

namespace halvenor::raster::calls {

// State (calls_state.cpp)
void glBlendFunc(State& state, GLenum source, GLenum destination);
void glClearColor(State& state, GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha);
void glDisable(State& state, GLenum capability);
void glEnable(State& state, GLenum capability);
GLenum glGetError(State& state);
void glGetIntegerv(State& state, GLenum name, GLint* values);
const GLubyte* glGetString(State& state, GLenum name);
void glHint(State& state, GLenum target, GLenum mode);
void glLoadIdentity(State& state);
void glPixelStorei(State& state, GLenum name, GLint value);
void glPopMatrix(State& state);
void glPushMatrix(State& state);
void glRotatef(State& state, GLfloat degrees, GLfloat x, GLfloat y, GLfloat z);
void glScalef(State& state, GLfloat x, GLfloat y, GLfloat z);
void glTranslatef(State& state, GLfloat x, GLfloat y, GLfloat z);
void glViewport(State& state, GLint x, GLint y, GLsizei width, GLsizei height);

// Textures (calls_textures.cpp)
void glBindTexture(State& state, GLenum target, GLuint name);
void glDeleteTextures(State& state, GLsizei count, const GLuint* names);
void glGenTextures(State& state, GLsizei count, GLuint* names);
void glTexImage2D(State& state, GLenum target, GLint level, GLint internalFormat, GLsizei width,
                  GLsizei height, GLint border, GLenum format, GLenum type, const void* pixels);
void glTexParameteri(State& state, GLenum target, GLenum name, GLint value);
GLint gluBuild2DMipmaps(State& state, GLenum target, GLint internalFormat, GLsizei width,
                        GLsizei height, GLenum format, GLenum type, const void* pixels);
GLboolean gluCheckExtension(State& state, const GLubyte* name, const GLubyte* extensions);

// Programs (calls_programs.cpp)
void glBindProgramARB(State& state, GLenum target, GLuint name);
void glDeleteProgramsARB(State& state, GLsizei count, const GLuint* names);
void glGenProgramsARB(State& state, GLsizei count, GLuint* names);
void glProgramLocalParameter4fARB(State& state, GLenum target, GLuint index, GLfloat x, GLfloat y,
                                  GLfloat z, GLfloat w);
void glProgramStringARB(State& state, GLenum target, GLenum format, GLsizei length,
                        const void* text);

// Drawing (calls_drawing.cpp)
void glBegin(State& state, GLenum mode);
void glCallList(State& state, GLuint list);
void glClear(State& state, GLbitfield mask);
void glColor4f(State& state, GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha);
void glDeleteLists(State& state, GLuint list, GLsizei count);
void glDrawArrays(State& state, GLenum mode, GLint first, GLsizei count);
void glEnd(State& state);
GLuint glGenLists(State& state, GLsizei count);
void glInterleavedArrays(State& state, GLenum format, GLsizei stride, const void* pointer);
void glRasterPos3f(State& state, GLfloat x, GLfloat y, GLfloat z);
void glTexCoord2f(State& state, GLfloat s, GLfloat t);
void glVertex2f(State& state, GLfloat x, GLfloat y);
void glVertex3f(State& state, GLfloat x, GLfloat y, GLfloat z);

} // namespace halvenor::raster::calls
