#include "tests/stand_ins/gl_effects.h"

#include "tests/stand_ins/agl_stand_in.h"
#include "tests/stand_ins/gl_recorder.h"

#include <algorithm>
#include <utility>

namespace halvenor::stand_ins {
namespace {

void ReportGlMisuse(Function function, const std::string& what) {
  ReportMisuse(std::string(NameOf(function)) + " " + what);
}

void ReportMissing(Function function, GLuint name) {
  ReportGlMisuse(function, "of " + std::to_string(name) + ", which is not there");
}

bool MayBeInPrimitive(std::string_view name) {
  for (const char* prefix : {"glVertex", "glColor", "glTexCoord", "glCallList", "glEnd"})
    if (name.starts_with(prefix)) return true;
  return false;
}

} // namespace

GlState& TheGl() {
  static GlState& state = *new GlState;
  return state;
}

void Names::Generate(GLsizei count, GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) {
    names[i] = next_.Add(1);
    live_.at(names[i]) = true;
    count_.Add(1);
  }
}

void Names::Delete(Function function, GLsizei count, const GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) {
    CheckUse(function, names[i]);
    if (names[i] != 0 && live_.at(names[i]).Exchange(false)) count_.Add(-1);
  }
}

void Names::CheckUse(Function function, GLuint name) const {
  if (name != 0 && !live_.at(name)) ReportMissing(function, name);
}

void Names::Reset() {
  for (auto& live : live_)
    live = false;
  next_ = 1;
  count_ = 0;
}

void GlState::CheckUse(Function function) const {
  if (function == Function::gluCheckExtension) return;
  if (CurrentContextNumber() == 0) ReportGlMisuse(function, "without a current context");
  if (in_primitive && !MayBeInPrimitive(NameOf(function)))
    ReportGlMisuse(function, "between glBegin and glEnd");
}

GLenum GlState::Do(Of<Function::glGetError>) {
  if (error_count == 0) return GL_NO_ERROR;
  const std::lock_guard lock(mutex);
  const GLenum error = errors.front();
  errors.pop_front();
  error_count = errors.size();
  return error;
}

Relaxed<GLuint>& GlState::BoundProgram(GLenum target) {
  return bound_programs[target == GL_VERTEX_PROGRAM_ARB ? 0 : 1];
}

void GlState::Do(Of<Function::glProgramStringARB>, GLenum target, GLenum /*format*/, GLsizei length,
                 const void* text) {
  const std::string_view header = target == GL_VERTEX_PROGRAM_ARB ? "!!ARBvp1.0" : "!!ARBfp1.0";
  std::string program(static_cast<const char*>(text), static_cast<std::size_t>(length));
  {
    const std::lock_guard lock(mutex);
    program_error =
        program.starts_with(header) ? ProgramError() : ProgramError{0, "no program header"};
    if (injected.position >= 0) program_error = std::exchange(injected, {});
    program_texts[BoundProgram(target)] = std::move(program);
    if (program_error.position < 0) return;
  }
  InjectGlError(GL_INVALID_OPERATION);
}

void GlState::Do(Of<Function::glGetIntegerv>, GLenum name, GLint* value) {
  const std::lock_guard lock(mutex);
  *value = name == GL_PROGRAM_ERROR_POSITION_ARB ? program_error.position : 0;
}

const GLubyte* GlState::Do(Of<Function::glGetString>, GLenum name) const {
  const std::string& text = name == GL_EXTENSIONS ? extensions : program_error.text;
  return reinterpret_cast<const GLubyte*>(text.c_str());
}

GLboolean GlState::Do(Of<Function::gluCheckExtension>, const GLubyte* name,
                      const GLubyte* list) const {
  const auto words = SplitList(reinterpret_cast<const char*>(list), " ");
  return std::ranges::count(words, reinterpret_cast<const char*>(name)) > 0 ? GL_TRUE : GL_FALSE;
}

void InjectGlError(unsigned code) {
  GlState& gl = TheGl();
  const std::lock_guard lock(gl.mutex);
  gl.errors.push_back(code);
  gl.error_count = gl.errors.size();
}

void SetExtensions(std::string list) {
  TheGl().extensions = std::move(list);
}

void InjectProgramError(int position, std::string text) {
  const std::lock_guard lock(TheGl().mutex);
  TheGl().injected = {position, std::move(text)};
}

std::string ProgramText(unsigned program) {
  const std::lock_guard lock(TheGl().mutex);
  return TheGl().program_texts[program];
}

std::int64_t LiveDisplayLists() {
  return TheGl().live_lists;
}
std::int64_t LiveTextures() {
  return TheGl().textures.Count();
}
std::int64_t LivePrograms() {
  return TheGl().programs.Count();
}

void ResetGl() {
  GlState& gl = TheGl();
  GlState::in_primitive = false;
  gl.next_list = 1;
  gl.live_lists = 0;
  gl.textures.Reset();
  gl.programs.Reset();
  gl.extensions = kAllExtensions;
  const std::lock_guard lock(gl.mutex);
  gl.errors.clear();
  gl.error_count = 0;
  gl.program_texts.clear();
  gl.program_error = {};
  gl.injected = {};
}

} // namespace halvenor::stand_ins
