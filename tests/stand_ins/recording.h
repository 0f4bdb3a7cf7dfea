// How the two stand-ins write to the log; suites use call_log.h.
#pragma once

#include "tests/stand_ins/call_log.h"
#include "tests/stand_ins/gl_functions.h"

#include <cstddef>

namespace halvenor::stand_ins {

/// Every function that a stand-in defines.
#define HALVENOR_GL_ENUMERATOR(arity, name, kinds) name,
#define HALVENOR_AGL_ENUMERATOR(name) name,
enum class Function : std::size_t {
  HALVENOR_GL_FUNCTIONS(HALVENOR_GL_ENUMERATOR) HALVENOR_AGL_FUNCTIONS(HALVENOR_AGL_ENUMERATOR)
      kCount
};
#undef HALVENOR_GL_ENUMERATOR
#undef HALVENOR_AGL_ENUMERATOR

[[nodiscard]] const char* NameOf(Function function);

/// Runs the hook of `function`, counts the call, and yields the error with which it is to fail, or
/// 0.
[[nodiscard]] unsigned Enter(Function function);

[[nodiscard]] bool Recording();

/// A number as recorded calls show it.
[[nodiscard]] std::string NumberText(double value);

/// Adds one call unless silent. The text is "name(parts, joined)".
void Record(Function function, const std::vector<std::string>& parts, std::vector<double> arguments,
            std::vector<Vertex> vertices = {});

/// Adds one line to the misuses.
void ReportMisuse(std::string line);

/// The parts of `Reset` that the two stand-ins keep to themselves.
void ResetGl();
void ResetAgl();

} // namespace halvenor::stand_ins
