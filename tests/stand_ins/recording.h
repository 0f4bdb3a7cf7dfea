// How the stand-ins write to the log; suites use call_log.h.
#pragma once

#include "tests/stand_ins/call_log.h"
#include "tests/stand_ins/gl_functions.h"

#include <GL/gl.h>

#include <cstddef>

namespace halvenor::stand_ins {

/// Every function that a stand-in defines.
#define HALVENOR_GL_ENUMERATOR(arity, name, kinds) name,
#define HALVENOR_PLATFORM_ENUMERATOR(name) name,
enum class Function : std::size_t {
  HALVENOR_GL_FUNCTIONS(HALVENOR_GL_ENUMERATOR)
      HALVENOR_PLATFORM_FUNCTIONS(HALVENOR_PLATFORM_ENUMERATOR) kCount
};
#undef HALVENOR_GL_ENUMERATOR
#undef HALVENOR_PLATFORM_ENUMERATOR

[[nodiscard]] const char* NameOf(Function function);

/// Runs the hook of `function`, counts the call, and yields the error with which it is to fail, or
/// 0.
[[nodiscard]] unsigned Enter(Function function);

[[nodiscard]] bool Recording();

/// A number as recorded calls show it.
[[nodiscard]] std::string NumberText(double value);

/// An enumerant as recorded calls show it.
[[nodiscard]] std::string EnumerantText(GLenum value);

/// Adds one call; callers ask `Recording` first. The text is "name(parts, joined)".
void Record(Function function, const std::vector<std::string>& parts, std::vector<double> arguments,
            std::vector<Vertex> vertices = {});

/// Adds one line to the misuses.
void ReportMisuse(std::string line);

/// What the stand-ins for OpenGL and for the context layer know of each other. The texture bound to
/// GL_TEXTURE_2D; whether a name was given out and not deleted; the texture that shows what the
/// thread's context draws into, or 0; whether that was destroyed. With a context its state goes.
[[nodiscard]] GLuint BoundTexture();
[[nodiscard]] bool IsLiveTexture(GLuint texture);
[[nodiscard]] GLuint TargetTexture();
[[nodiscard]] bool TargetIsDestroyed();
void ForgetGlState();

/// The parts of `Reset` that the stand-ins keep to themselves.
void ResetGl();
void ResetAgl();
void ResetPBuffers();
void ResetBundle();

} // namespace halvenor::stand_ins
