// What the functions of the OpenGL stand-in do beyond being recorded.
#pragma once

#include "tests/stand_ins/recording.h"

#include <GL/gl.h>

#include <vector>

namespace halvenor::stand_ins {

/// Reports what is wrong with a call of `function` at this moment.
void CheckUse(Function function);

/// Copies of the vertices that glDrawArrays is to draw.
[[nodiscard]] std::vector<Vertex> DrawnVertices(GLint first, GLsizei count);

template <Function>
struct Of {};

// A function without an effect here does nothing and gives 0.
void Do(Of<Function::glBegin>, GLenum mode);
void Do(Of<Function::glEnd>);
GLuint Do(Of<Function::glGenLists>, GLsizei range);
void Do(Of<Function::glDeleteLists>, GLuint base, GLsizei range);
GLenum Do(Of<Function::glGetError>);
void Do(Of<Function::glInterleavedArrays>, GLenum format, GLsizei stride, const void* pointer);
void Do(Of<Function::glEnable>, GLenum capability);
void Do(Of<Function::glDisable>, GLenum capability);
void Do(Of<Function::glGenTextures>, GLsizei count, GLuint* names);
void Do(Of<Function::glDeleteTextures>, GLsizei count, const GLuint* names);
void Do(Of<Function::glBindTexture>, GLenum target, GLuint name);
void Do(Of<Function::glGenProgramsARB>, GLsizei count, GLuint* names);
void Do(Of<Function::glDeleteProgramsARB>, GLsizei count, const GLuint* names);
void Do(Of<Function::glBindProgramARB>, GLenum target, GLuint name);
void Do(Of<Function::glProgramStringARB>, GLenum target, GLenum format, GLsizei length,
        const void* text);
void Do(Of<Function::glGetIntegerv>, GLenum name, GLint* value);
const GLubyte* Do(Of<Function::glGetString>, GLenum name);
GLboolean Do(Of<Function::gluCheckExtension>, const GLubyte* name, const GLubyte* list);

} // namespace halvenor::stand_ins
