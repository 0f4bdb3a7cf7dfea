// OpenGL for the plug-in's own code, in place of <GL/gl.h>: inside namespace halvenor the names of
// the listed functions mean the calling thread's table. A function that is not listed remains the
// library's, which the module is not linked with.
#pragma once

#include "gl_calls/current_table.h"

namespace halvenor {
namespace gl_calls {

template <auto Member, class Signature>
struct Call;
template <auto Member, class Result, class... Arguments>
struct Call<Member, Result(Arguments...)> {
  Result operator()(Arguments... arguments) const { return (current->*Member)(arguments...); }
};

} // namespace gl_calls

// NOLINTBEGIN(readability-identifier-naming): the names are OpenGL's.
#define HALVENOR_GL_CALL(name, kinds)                                                              \
  inline constexpr gl_calls::Call<&gl_calls::Table::name, decltype(::name)> name;
HALVENOR_GL_FUNCTIONS(HALVENOR_GL_CALL)
#undef HALVENOR_GL_CALL
// NOLINTEND(readability-identifier-naming)

} // namespace halvenor
