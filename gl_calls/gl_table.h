// OpenGL as a table: one function for each that the plug-in calls. A driver's functions, drawing on
// the processor, a recorder for tests and the like are one table each.
#pragma once

#include "gl_calls/gl_functions.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <cstddef>

namespace halvenor::gl_calls {

/// The listed functions, counted from 0 in the order of the list.
#define HALVENOR_GL_ENUMERATOR(name, kinds) name,
enum class Function : std::size_t { HALVENOR_GL_FUNCTIONS(HALVENOR_GL_ENUMERATOR) };
#undef HALVENOR_GL_ENUMERATOR

/// The names of the functions and the kinds of their arguments, by `Function`.
struct Description {
  const char* name;
  const char* kinds;
};
#define HALVENOR_GL_DESCRIPTION(name, kinds) {#name, kinds},
inline constexpr Description kDescriptions[] = {HALVENOR_GL_FUNCTIONS(HALVENOR_GL_DESCRIPTION)};
#undef HALVENOR_GL_DESCRIPTION

/// Every member has to be set: calls do not look for null.
#define HALVENOR_GL_MEMBER(name, kinds) decltype(::name)* name;
struct Table {
  HALVENOR_GL_FUNCTIONS(HALVENOR_GL_MEMBER)
};
#undef HALVENOR_GL_MEMBER

/// The function of `table` that `F` names.
template <Function F>
constexpr auto Member(const Table& table) {
#define HALVENOR_GL_CHOICE(name, kinds)                                                            \
  if constexpr (F == Function::name)                                                               \
    return table.name;                                                                             \
  else
  HALVENOR_GL_FUNCTIONS(HALVENOR_GL_CHOICE) return nullptr;
#undef HALVENOR_GL_CHOICE
}

/// The table of the functions `Row<F, Signature>::Call`, where `Row` is a class template:
///
///   template <Function F, class Signature> struct Row;
///   template <Function F, class Result, class... Arguments>
///   struct Row<F, Result(Arguments...)> { static Result Call(Arguments... arguments); };
template <template <Function, class> class Row>
constexpr Table MakeTable() {
#define HALVENOR_GL_ROW(name, kinds) &Row<Function::name, decltype(::name)>::Call,
  return {HALVENOR_GL_FUNCTIONS(HALVENOR_GL_ROW)};
#undef HALVENOR_GL_ROW
}

} // namespace halvenor::gl_calls
