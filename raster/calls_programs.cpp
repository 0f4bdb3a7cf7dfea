#include "raster/calls.h"
#include "raster/names.h"

#include <GL/glext.h>

#include <string_view>
#include <utility>

namespace halvenor::raster::calls {
namespace {

struct Binding {
  GLuint& name;
  std::shared_ptr<ProgramObject>& object;
  ProgramTarget kind;
};

std::optional<Binding> FindBinding(State& state, GLenum target) {
  switch (target) {
  case GL_VERTEX_PROGRAM_ARB:
    return Binding{state.vertexProgramName, state.vertexProgram, ProgramTarget::Vertex};
  case GL_FRAGMENT_PROGRAM_ARB:
    return Binding{state.fragmentProgramName, state.fragmentProgram, ProgramTarget::Fragment};
  default:
    state.Fail(GL_INVALID_ENUM);
    return std::nullopt;
  }
}

} // namespace

void glBindProgramARB(State& state, GLenum target, GLuint name) {
  const auto binding = FindBinding(state, target);
  if (!binding || name == binding->name) return;
  if (name == 0) {
    binding->object = std::make_shared<ProgramObject>();
  } else {
    const std::shared_ptr<ProgramObject>& object = FindOrMake(state.programNames, name);
    if (object->target != 0 && object->target != target) return state.Fail(GL_INVALID_OPERATION);
    object->target = target;
    binding->object = object;
  }
  binding->name = name;
}

void glDeleteProgramsARB(State& state, GLsizei count, const GLuint* names) {
  if (count < 0) return state.Fail(GL_INVALID_VALUE);
  for (GLsizei i = 0; i < count; ++i) {
    if (names[i] == 0 || state.programNames.erase(names[i]) == 0) continue;
    for (const GLenum target : {GLenum{GL_VERTEX_PROGRAM_ARB}, GLenum{GL_FRAGMENT_PROGRAM_ARB}})
      if (FindBinding(state, target)->name == names[i]) glBindProgramARB(state, target, 0);
  }
}

void glGenProgramsARB(State& state, GLsizei count, GLuint* names) {
  if (count < 0) return state.Fail(GL_INVALID_VALUE);
  GiveNames(state.programNames, count, names);
}

void glProgramLocalParameter4fARB(State& state, GLenum target, GLuint index, GLfloat x, GLfloat y,
                                  GLfloat z, GLfloat w) {
  const auto binding = FindBinding(state, target);
  if (!binding) return;
  if (index >= static_cast<GLuint>(kMaxLocalParameters)) return state.Fail(GL_INVALID_VALUE);
  binding->object->local[index] = {x, y, z, w};
}

void glProgramStringARB(State& state, GLenum target, GLenum format, GLsizei length,
                        const void* text) {
  if (format != GL_PROGRAM_FORMAT_ASCII_ARB) return state.Fail(GL_INVALID_ENUM);
  const auto binding = FindBinding(state, target);
  if (!binding) return;
  if (length < 0) return state.Fail(GL_INVALID_VALUE);
  auto parsed = ParseProgram(binding->kind,
                             {static_cast<const char*>(text), static_cast<std::size_t>(length)});
  if (auto* const error = std::get_if<ProgramError>(&parsed)) {
    state.programError = std::move(*error);
    return state.Fail(GL_INVALID_OPERATION);
  }
  state.programError = {-1, ""};
  binding->object->program = std::get<Program>(std::move(parsed));
}

} // namespace halvenor::raster::calls
