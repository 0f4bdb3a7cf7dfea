// What the functions of the OpenGL stand-in do beyond being recorded.
#pragma once

#include "tests/stand_ins/recording.h"

#include <array>
#include <deque>
#include <map>
#include <mutex>

namespace halvenor::stand_ins {

template <Function F>
struct Of {
  static constexpr Function kFunction = F;
};

/// The names of one kind of object, each given out once. Without a lock, as frames ask for them.
class Names {
public:
  void Generate(GLsizei count, GLuint* names);
  /// Names that are not there are a misuse.
  void Delete(Function function, GLsizei count, const GLuint* names);
  void CheckUse(Function function, GLuint name) const;
  [[nodiscard]] std::int64_t Count() const { return count_; }
  void Reset();

private:
  std::array<Relaxed<bool>, 4096> live_{};
  Relaxed<GLuint> next_{1};
  Relaxed<std::int64_t> count_{0};
};

struct ProgramError {
  GLint position = -1;
  std::string text;
};

inline constexpr char kAllExtensions[] = "GL_ARB_fragment_program GL_ARB_vertex_program";

class GlState {
public:
  /// Reports what is wrong with a call of `function` at this moment.
  void CheckUse(Function function) const;

  // A function that has no overload here does nothing and gives 0.
  void Do(Of<Function::glBegin>, GLenum /*mode*/) { in_primitive = true; }
  void Do(Of<Function::glEnd>) { in_primitive = false; }
  GLuint Do(Of<Function::glGenLists>, GLsizei range) {
    live_lists.Add(range);
    return next_list.Add(static_cast<GLuint>(range));
  }
  void Do(Of<Function::glDeleteLists>, GLuint base, GLsizei range) {
    if (base != 0) live_lists.Add(-range);
  }
  GLenum Do(Of<Function::glGetError>);
  void Do(Of<Function::glGenTextures>, GLsizei count, GLuint* names) {
    textures.Generate(count, names);
  }
  void Do(Of<Function::glDeleteTextures> which, GLsizei count, const GLuint* names) {
    textures.Delete(which.kFunction, count, names);
  }
  void Do(Of<Function::glBindTexture> which, GLenum /*target*/, GLuint name) {
    textures.CheckUse(which.kFunction, name);
  }
  void Do(Of<Function::glGenProgramsARB>, GLsizei count, GLuint* names) {
    programs.Generate(count, names);
  }
  void Do(Of<Function::glDeleteProgramsARB> which, GLsizei count, const GLuint* names) {
    programs.Delete(which.kFunction, count, names);
  }
  void Do(Of<Function::glBindProgramARB> which, GLenum target, GLuint name) {
    programs.CheckUse(which.kFunction, name);
    BoundProgram(target) = name;
  }
  void Do(Of<Function::glProgramStringARB>, GLenum target, GLenum format, GLsizei length,
          const void* text);
  void Do(Of<Function::glGetIntegerv>, GLenum name, GLint* value);
  const GLubyte* Do(Of<Function::glGetString>, GLenum name) const;
  GLboolean Do(Of<Function::gluCheckExtension>, const GLubyte* name, const GLubyte* list) const;

  Relaxed<GLuint>& BoundProgram(GLenum target);

  static inline thread_local bool in_primitive = false; // between glBegin and glEnd
  Relaxed<GLuint> next_list{1};
  Relaxed<std::int64_t> live_lists{0};
  Names textures;
  Names programs;
  std::array<Relaxed<GLuint>, 2> bound_programs{}; // for vertices, for fragments
  std::string extensions = kAllExtensions;

  Relaxed<std::size_t> error_count{0}; // so that reading no error takes no lock
  std::mutex mutex;                    // for what follows
  std::deque<GLenum> errors;
  std::map<GLuint, std::string> program_texts;
  ProgramError program_error;
  ProgramError injected; // for the next program
};

[[nodiscard]] GlState& TheGl();

} // namespace halvenor::stand_ins
