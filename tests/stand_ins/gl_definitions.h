// Defines the OpenGL functions of gl_functions.h, each by the one template of a namespace that also
// has an enumeration `Function` of their names:
//
//   template <Function F, class Result, class... Arguments>
//   Result Serve(const char* kinds, Arguments... arguments);
//
// The including file gives that namespace the name HALVENOR_GL_HERE and then says
// HALVENOR_GL_FUNCTIONS(HALVENOR_GL_DEFINE) outside any namespace.
#pragma once

#define GL_GLEXT_PROTOTYPES
#include "tests/stand_ins/gl_functions.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <cstddef>
#include <tuple>

namespace halvenor::gl_definitions {

template <class Signature>
struct Parts;
template <class R, class... Arguments>
struct Parts<R(Arguments...)> {
  using Result = R;
  template <std::size_t I>
  using Argument = std::tuple_element_t<I, std::tuple<Arguments...>>;
  static constexpr std::size_t kArity = sizeof...(Arguments);
};

template <class Signature, std::size_t I>
using ArgumentOf = typename Parts<Signature>::template Argument<I>;

} // namespace halvenor::gl_definitions

#define HALVENOR_GL_ARGUMENT(f, place) halvenor::gl_definitions::ArgumentOf<decltype(f), place>
#define HALVENOR_GL_PARAMETERS_0(f)
#define HALVENOR_GL_PARAMETERS_1(f) HALVENOR_GL_ARGUMENT(f, 0) a
#define HALVENOR_GL_PARAMETERS_2(f) HALVENOR_GL_PARAMETERS_1(f), HALVENOR_GL_ARGUMENT(f, 1) b
#define HALVENOR_GL_PARAMETERS_3(f) HALVENOR_GL_PARAMETERS_2(f), HALVENOR_GL_ARGUMENT(f, 2) c
#define HALVENOR_GL_PARAMETERS_4(f) HALVENOR_GL_PARAMETERS_3(f), HALVENOR_GL_ARGUMENT(f, 3) d
#define HALVENOR_GL_PARAMETERS_5(f) HALVENOR_GL_PARAMETERS_4(f), HALVENOR_GL_ARGUMENT(f, 4) e
#define HALVENOR_GL_PARAMETERS_6(f) HALVENOR_GL_PARAMETERS_5(f), HALVENOR_GL_ARGUMENT(f, 5) g
#define HALVENOR_GL_PARAMETERS_7(f) HALVENOR_GL_PARAMETERS_6(f), HALVENOR_GL_ARGUMENT(f, 6) h
#define HALVENOR_GL_PARAMETERS_8(f) HALVENOR_GL_PARAMETERS_7(f), HALVENOR_GL_ARGUMENT(f, 7) i
#define HALVENOR_GL_PARAMETERS_9(f) HALVENOR_GL_PARAMETERS_8(f), HALVENOR_GL_ARGUMENT(f, 8) j
#define HALVENOR_GL_VALUES_0
#define HALVENOR_GL_VALUES_1 , a
#define HALVENOR_GL_VALUES_2 , a, b
#define HALVENOR_GL_VALUES_3 , a, b, c
#define HALVENOR_GL_VALUES_4 , a, b, c, d
#define HALVENOR_GL_VALUES_5 , a, b, c, d, e
#define HALVENOR_GL_VALUES_6 , a, b, c, d, e, g
#define HALVENOR_GL_VALUES_7 , a, b, c, d, e, g, h
#define HALVENOR_GL_VALUES_9 , a, b, c, d, e, g, h, i, j

#define HALVENOR_GL_DEFINE(arity, name, kinds)                                                     \
  extern "C" halvenor::gl_definitions::Parts<decltype(name)>::Result name(                         \
      HALVENOR_GL_PARAMETERS_##arity(name)) {                                                      \
    using Parts = halvenor::gl_definitions::Parts<decltype(name)>;                                 \
    static_assert(Parts::kArity == arity && sizeof kinds == arity + 1);                            \
    return HALVENOR_GL_HERE::Serve<HALVENOR_GL_HERE::Function::name, Parts::Result>(               \
        kinds HALVENOR_GL_VALUES_##arity);                                                         \
  }
