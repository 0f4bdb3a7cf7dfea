#define GL_GLEXT_PROTOTYPES
#include "tests/stand_ins/gl_effects.h"

#include "tests/stand_ins/agl_stand_in.h"
#include "tests/stand_ins/gl_recorder.h"

#include <GL/glext.h>

#include <cstring>
#include <sstream>

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

std::size_t PlaceOf(GLenum programTarget) {
  return programTarget == GL_VERTEX_PROGRAM_ARB ? 0 : 1;
}

} // namespace

GlState& TheGl() {
  static GlState& state = *new GlState;
  return state;
}

void Names::Generate(GLsizei count, GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) {
    names[i] = next_.Add(1);
    if (names[i] < live_.size()) live_[names[i]] = true;
    count_.Add(1);
  }
}

void Names::Delete(Function function, GLsizei count, const GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) {
    if (names[i] == 0) continue;
    if (names[i] < live_.size() && live_[names[i]].Exchange(false)) {
      count_.Add(-1);
    } else {
      ReportMissing(function, names[i]);
    }
  }
}

void Names::CheckUse(Function function, GLuint name) const {
  if (name != 0 && !IsLive(name)) ReportMissing(function, name);
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
  const bool draws = function == Function::glBegin || function == Function::glDrawArrays;
  if ((draws || function == Function::glClear) && TargetIsDestroyed())
    ReportGlMisuse(function, "into a pbuffer that was destroyed");
  if (draws && texturing && bound_texture != 0 && bound_texture == TargetTexture())
    ReportGlMisuse(function, "into the pbuffer whose texture it reads");
}

std::vector<Vertex> GlState::DrawnVertices(GLint first, GLsizei count) const {
  const auto* base = static_cast<const unsigned char*>(static_cast<const void*>(array));
  if (array_format != GL_V2F || base == nullptr || first < 0 || count < 0) {
    ReportGlMisuse(Function::glDrawArrays, "without a GL_V2F array");
    return {};
  }
  const GLsizei stride = array_stride == 0 ? GLsizei{sizeof(Vertex)} : GLsizei{array_stride};
  std::vector<Vertex> vertices(static_cast<std::size_t>(count));
  for (GLsizei i = 0; i < count; ++i) {
    std::memcpy(&vertices[static_cast<std::size_t>(i)],
                base + static_cast<std::ptrdiff_t>(first + i) * stride, sizeof(Vertex));
  }
  return vertices;
}

void GlState::Do(Of<Function::glEnd>) {
  if (!in_primitive) ReportGlMisuse(Function::glEnd, "without glBegin");
  in_primitive = false;
}

GLuint GlState::Do(Of<Function::glGenLists>, GLsizei range) {
  live_lists.Add(range);
  return next_list.Add(static_cast<GLuint>(range));
}

void GlState::Do(Of<Function::glDeleteLists>, GLuint base, GLsizei range) {
  if (base != 0) live_lists.Add(-range);
}

GLenum GlState::Do(Of<Function::glGetError>) {
  if (error_count == 0) return GL_NO_ERROR;
  const std::lock_guard lock(mutex);
  const GLenum error = errors.front();
  errors.pop_front();
  error_count = errors.size();
  return error;
}

void GlState::Do(Of<Function::glInterleavedArrays>, GLenum format, GLsizei stride,
                 const void* pointer) {
  array_format = format;
  array_stride = stride;
  array = pointer;
}

void GlState::Do(Of<Function::glDeleteTextures>, GLsizei count, const GLuint* names) {
  textures.Delete(Function::glDeleteTextures, count, names);
  if (!textures.IsLive(bound_texture)) bound_texture = 0;
}

void GlState::Do(Of<Function::glBindTexture>, GLenum target, GLuint name) {
  textures.CheckUse(Function::glBindTexture, name);
  if (target == GL_TEXTURE_2D) bound_texture = name;
}

void GlState::Do(Of<Function::glDeleteProgramsARB>, GLsizei count, const GLuint* names) {
  programs.Delete(Function::glDeleteProgramsARB, count, names);
}

void GlState::Do(Of<Function::glBindProgramARB>, GLenum target, GLuint name) {
  programs.CheckUse(Function::glBindProgramARB, name);
  bound_programs.at(PlaceOf(target)) = name;
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
    program_texts[bound_programs.at(PlaceOf(target))] = std::move(program);
    if (program_error.position < 0) return;
  }
  InjectGlError(GL_INVALID_OPERATION);
}

void GlState::Do(Of<Function::glGetIntegerv>, GLenum name, GLint* value) {
  const std::lock_guard lock(mutex);
  *value = name == GL_PROGRAM_ERROR_POSITION_ARB ? program_error.position : 0;
}

const GLubyte* GlState::Do(Of<Function::glGetString>, GLenum name) {
  const char* text = "stand-in";
  if (name == GL_EXTENSIONS) text = extensions.c_str();
  if (name == GL_PROGRAM_ERROR_STRING_ARB) text = program_error.text.c_str();
  return reinterpret_cast<const GLubyte*>(text);
}

GLboolean GlState::Do(Of<Function::gluCheckExtension>, const GLubyte* name, const GLubyte* list) {
  std::istringstream words(reinterpret_cast<const char*>(list));
  for (std::string word; words >> word;)
    if (word == reinterpret_cast<const char*>(name)) return GL_TRUE;
  return GL_FALSE;
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

GLuint BoundTexture() {
  return TheGl().bound_texture;
}

bool IsLiveTexture(GLuint texture) {
  return TheGl().textures.IsLive(texture);
}

void ForgetGlState() {
  GlState& gl = TheGl();
  gl.bound_texture = 0;
  gl.texturing = false;
  gl.bound_programs[0] = 0;
  gl.bound_programs[1] = 0;
}

void ResetGl() {
  GlState& gl = TheGl();
  ForgetGlState();
  GlState::in_primitive = false;
  gl.array_format = 0;
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
