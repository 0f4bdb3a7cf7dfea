#define GL_GLEXT_PROTOTYPES
#include "tests/stand_ins/gl_effects.h"

#include "tests/stand_ins/agl_stand_in.h"
#include "tests/stand_ins/gl_recorder.h"

#include <GL/glext.h>

#include <array>
#include <atomic>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <sstream>
#include <string_view>
#include <utility>

namespace halvenor::stand_ins {
namespace {

struct InterleavedArrays {
  std::atomic<GLenum> format{0};
  std::atomic<GLsizei> stride{0};
  std::atomic<const void*> pointer{nullptr};
};
InterleavedArrays interleaved;

std::atomic<GLuint> next_list{1};
std::atomic<std::int64_t> live_lists{0};

std::atomic<std::size_t> error_count{0}; // so that reading no error takes no lock
std::mutex error_mutex;
std::deque<GLenum> errors;

thread_local bool between_begin_and_end = false;

// The names of one kind of object, each given out once. Without a lock, as frames ask for them.
class Names {
public:
  void Generate(GLsizei count, GLuint* names) {
    for (GLsizei i = 0; i < count; ++i) {
      names[i] = next_.fetch_add(1, std::memory_order_relaxed);
      if (names[i] < live_.size()) live_[names[i]].store(true, std::memory_order_relaxed);
      count_.fetch_add(1, std::memory_order_relaxed);
    }
  }
  bool Delete(GLuint name) {
    const bool was = name < live_.size() && live_[name].exchange(false, std::memory_order_relaxed);
    if (was) count_.fetch_sub(1, std::memory_order_relaxed);
    return was;
  }
  [[nodiscard]] bool IsLive(GLuint name) const {
    return name < live_.size() && live_[name].load(std::memory_order_relaxed);
  }
  [[nodiscard]] std::int64_t Count() const { return count_.load(std::memory_order_relaxed); }
  void Reset() {
    for (auto& live : live_)
      live.store(false, std::memory_order_relaxed);
    next_ = 1;
    count_ = 0;
  }

private:
  std::array<std::atomic<bool>, 4096> live_{};
  std::atomic<GLuint> next_{1};
  std::atomic<std::int64_t> count_{0};
};

Names textures;
Names programs;
std::atomic<GLuint> bound_texture{0};
std::atomic<bool> texturing{false};
std::atomic<GLuint> bound_vertex_program{0};
std::atomic<GLuint> bound_fragment_program{0};

constexpr char kAllExtensions[] = "GL_ARB_fragment_program GL_ARB_vertex_program";
std::string extensions = kAllExtensions;

struct ProgramError {
  GLint position = -1;
  std::string text;
};
struct ProgramState {
  std::mutex mutex;
  std::map<GLuint, std::string> texts;
  ProgramError error;
  std::deque<ProgramError> injected;
};
ProgramState program_state;

void ReportGlMisuse(Function function, const std::string& what) {
  ReportMisuse(std::string(NameOf(function)) + " " + what);
}

bool IsAnyOf(Function function, std::initializer_list<Function> list) {
  for (const Function one : list)
    if (one == function) return true;
  return false;
}

bool AllowedBetweenBeginAndEnd(const char* name) {
  for (const char* prefix : {"glVertex", "glColor", "glTexCoord", "glCallList", "glEnd"}) {
    if (std::strncmp(name, prefix, std::strlen(prefix)) == 0) return true;
  }
  return false;
}

void DeleteAll(Function function, Names& kind, GLsizei count, const GLuint* names) {
  for (GLsizei i = 0; i < count; ++i) {
    if (names[i] != 0 && !kind.Delete(names[i]))
      ReportGlMisuse(function, "of " + std::to_string(names[i]) + ", which is not there");
  }
}

void CheckName(Function function, const Names& kind, GLuint name) {
  if (name != 0 && !kind.IsLive(name))
    ReportGlMisuse(function, "of " + std::to_string(name) + ", which is not there");
}

std::atomic<GLuint>& BoundProgram(GLenum target) {
  return target == GL_VERTEX_PROGRAM_ARB ? bound_vertex_program : bound_fragment_program;
}

} // namespace

void CheckUse(Function function) {
  if (function == Function::gluCheckExtension) return;
  if (CurrentContextNumber() == 0) ReportGlMisuse(function, "without a current context");
  if (between_begin_and_end && !AllowedBetweenBeginAndEnd(NameOf(function))) {
    ReportGlMisuse(function, "between glBegin and glEnd");
  }
  const bool draws = IsAnyOf(function, {Function::glBegin, Function::glDrawArrays});
  if ((draws || function == Function::glClear) && TargetIsDestroyed()) {
    ReportGlMisuse(function, "into a pbuffer that was destroyed");
  }
  if (draws && texturing.load(std::memory_order_relaxed) && BoundTexture() != 0 &&
      BoundTexture() == TargetTexture()) {
    ReportGlMisuse(function, "into the pbuffer whose texture it reads");
  }
}

std::vector<Vertex> DrawnVertices(GLint first, GLsizei count) {
  const auto* base = static_cast<const unsigned char*>(interleaved.pointer.load());
  if (interleaved.format != GL_V2F || base == nullptr) {
    ReportGlMisuse(Function::glDrawArrays, "without a GL_V2F array");
    return {};
  }
  if (first < 0 || count < 0) {
    ReportGlMisuse(Function::glDrawArrays, "of a negative range");
    return {};
  }
  const GLsizei stride =
      interleaved.stride == 0 ? GLsizei{sizeof(Vertex)} : interleaved.stride.load();
  std::vector<Vertex> vertices(static_cast<std::size_t>(count));
  for (GLsizei i = 0; i < count; ++i) {
    std::memcpy(&vertices[static_cast<std::size_t>(i)],
                base + static_cast<std::ptrdiff_t>(first + i) * stride, sizeof(Vertex));
  }
  return vertices;
}

void Do(Of<Function::glBegin>, GLenum /*mode*/) {
  between_begin_and_end = true;
}

void Do(Of<Function::glEnd>) {
  if (!between_begin_and_end) ReportGlMisuse(Function::glEnd, "without glBegin");
  between_begin_and_end = false;
}

GLuint Do(Of<Function::glGenLists>, GLsizei range) {
  if (range <= 0) return 0;
  live_lists.fetch_add(range, std::memory_order_relaxed);
  return next_list.fetch_add(static_cast<GLuint>(range), std::memory_order_relaxed);
}

void Do(Of<Function::glDeleteLists>, GLuint base, GLsizei range) {
  if (base != 0 && range > 0) live_lists.fetch_sub(range, std::memory_order_relaxed);
}

GLenum Do(Of<Function::glGetError>) {
  if (error_count.load(std::memory_order_relaxed) == 0) return GL_NO_ERROR;
  const std::lock_guard lock(error_mutex);
  if (errors.empty()) return GL_NO_ERROR;
  const GLenum error = errors.front();
  errors.pop_front();
  error_count.store(errors.size(), std::memory_order_relaxed);
  return error;
}

void Do(Of<Function::glInterleavedArrays>, GLenum format, GLsizei stride, const void* pointer) {
  interleaved.format.store(format, std::memory_order_relaxed);
  interleaved.stride.store(stride, std::memory_order_relaxed);
  interleaved.pointer.store(pointer, std::memory_order_relaxed);
}

void Do(Of<Function::glEnable>, GLenum capability) {
  if (capability == GL_TEXTURE_2D) texturing.store(true, std::memory_order_relaxed);
}

void Do(Of<Function::glDisable>, GLenum capability) {
  if (capability == GL_TEXTURE_2D) texturing.store(false, std::memory_order_relaxed);
}

void Do(Of<Function::glGenTextures>, GLsizei count, GLuint* names) {
  textures.Generate(count, names);
}

void Do(Of<Function::glDeleteTextures>, GLsizei count, const GLuint* names) {
  DeleteAll(Function::glDeleteTextures, textures, count, names);
  if (!textures.IsLive(BoundTexture())) bound_texture.store(0, std::memory_order_relaxed);
}

void Do(Of<Function::glBindTexture>, GLenum target, GLuint name) {
  CheckName(Function::glBindTexture, textures, name);
  if (target == GL_TEXTURE_2D) bound_texture.store(name, std::memory_order_relaxed);
}

void Do(Of<Function::glGenProgramsARB>, GLsizei count, GLuint* names) {
  programs.Generate(count, names);
}

void Do(Of<Function::glDeleteProgramsARB>, GLsizei count, const GLuint* names) {
  DeleteAll(Function::glDeleteProgramsARB, programs, count, names);
}

void Do(Of<Function::glBindProgramARB>, GLenum target, GLuint name) {
  CheckName(Function::glBindProgramARB, programs, name);
  BoundProgram(target).store(name, std::memory_order_relaxed);
}

void Do(Of<Function::glProgramStringARB>, GLenum target, GLenum /*format*/, GLsizei length,
        const void* text) {
  const std::string_view header = target == GL_VERTEX_PROGRAM_ARB ? "!!ARBvp1.0" : "!!ARBfp1.0";
  std::string program(static_cast<const char*>(text), static_cast<std::size_t>(length));
  const std::lock_guard lock(program_state.mutex);
  ProgramError& error = program_state.error;
  error = program.starts_with(header) ? ProgramError() : ProgramError{0, "no program header"};
  if (!program_state.injected.empty()) {
    if (program_state.injected.front().position >= 0) error = program_state.injected.front();
    program_state.injected.pop_front();
  }
  program_state.texts[BoundProgram(target)] = std::move(program);
  if (error.position >= 0) InjectGlError(GL_INVALID_OPERATION);
}

void Do(Of<Function::glGetIntegerv>, GLenum name, GLint* value) {
  const std::lock_guard lock(program_state.mutex);
  *value = name == GL_PROGRAM_ERROR_POSITION_ARB ? program_state.error.position : 0;
}

const GLubyte* Do(Of<Function::glGetString>, GLenum name) {
  const char* text = "stand-in";
  if (name == GL_EXTENSIONS) text = extensions.c_str();
  if (name == GL_PROGRAM_ERROR_STRING_ARB) text = program_state.error.text.c_str();
  return reinterpret_cast<const GLubyte*>(text);
}

GLboolean Do(Of<Function::gluCheckExtension>, const GLubyte* name, const GLubyte* list) {
  std::istringstream words(reinterpret_cast<const char*>(list));
  for (std::string word; words >> word;)
    if (word == reinterpret_cast<const char*>(name)) return GL_TRUE;
  return GL_FALSE;
}

void InjectGlError(unsigned code) {
  const std::lock_guard lock(error_mutex);
  errors.push_back(code);
  error_count.store(errors.size(), std::memory_order_relaxed);
}

void SetExtensions(std::string list) {
  extensions = std::move(list);
}

void InjectProgramError(int position, std::string text, std::size_t nth) {
  const std::lock_guard lock(program_state.mutex);
  if (program_state.injected.size() < nth) program_state.injected.resize(nth);
  program_state.injected[nth - 1] = {position, std::move(text)};
}

std::string ProgramText(unsigned program) {
  const std::lock_guard lock(program_state.mutex);
  const auto found = program_state.texts.find(program);
  return found == program_state.texts.end() ? std::string() : found->second;
}

std::int64_t LiveDisplayLists() {
  return live_lists.load(std::memory_order_relaxed);
}
std::int64_t LiveTextures() {
  return textures.Count();
}
std::int64_t LivePrograms() {
  return programs.Count();
}

GLuint BoundTexture() {
  return bound_texture.load(std::memory_order_relaxed);
}

bool IsLiveTexture(GLuint texture) {
  return textures.IsLive(texture);
}

void ForgetGlState() {
  bound_texture = 0;
  texturing = false;
  bound_vertex_program = 0;
  bound_fragment_program = 0;
}

void ResetGl() {
  interleaved.format = 0;
  interleaved.pointer = nullptr;
  next_list = 1;
  live_lists = 0;
  between_begin_and_end = false;
  ForgetGlState();
  textures.Reset();
  programs.Reset();
  extensions = kAllExtensions;
  {
    const std::lock_guard lock(program_state.mutex);
    program_state.texts.clear();
    program_state.error = ProgramError();
    program_state.injected.clear();
  }
  const std::lock_guard lock(error_mutex);
  errors.clear();
  error_count = 0;
}

} // namespace halvenor::stand_ins
