// Defines every OpenGL function that the plug-in uses, and the platform layer's choice of what is
// drawn into, each by the one template of the including
// file, which must see
//
//   template <Function F, class Result, class... Arguments> Result Serve(Arguments... arguments);
//
// and then says HALVENOR_BENCH_FUNCTIONS(HALVENOR_DEFINE_GL) outside any namespace.
#pragma once

#define GL_GLEXT_PROTOTYPES
#include "tests/stand_ins/gl_functions.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <cstddef>
#include <tuple>

#define HALVENOR_BENCH_FUNCTIONS(X) HALVENOR_GL_FUNCTIONS(X) X(2, glBindFramebuffer, "en")

namespace halvenor::bench {

#define HALVENOR_GL_ENUMERATOR(arity, name, kinds) name,
enum class Function : std::size_t { HALVENOR_BENCH_FUNCTIONS(HALVENOR_GL_ENUMERATOR) };
#undef HALVENOR_GL_ENUMERATOR

template <class Signature>
struct Parts;
template <class R, class... Arguments>
struct Parts<R(Arguments...)> {
  using Result = R;
  using Tuple = std::tuple<Arguments...>;
};

template <class Signature, std::size_t I>
using ArgumentOf = std::tuple_element_t<I, typename Parts<Signature>::Tuple>;

} // namespace halvenor::bench

#define HALVENOR_GL_ARGUMENT(name, place) halvenor::bench::ArgumentOf<decltype(name), place>
#define HALVENOR_GL_PARAMETERS_0(name)
#define HALVENOR_GL_PARAMETERS_1(name) HALVENOR_GL_ARGUMENT(name, 0) a
#define HALVENOR_GL_PARAMETERS_2(name)                                                             \
  HALVENOR_GL_PARAMETERS_1(name), HALVENOR_GL_ARGUMENT(name, 1) b
#define HALVENOR_GL_PARAMETERS_3(name)                                                             \
  HALVENOR_GL_PARAMETERS_2(name), HALVENOR_GL_ARGUMENT(name, 2) c
#define HALVENOR_GL_PARAMETERS_4(name)                                                             \
  HALVENOR_GL_PARAMETERS_3(name), HALVENOR_GL_ARGUMENT(name, 3) d
#define HALVENOR_GL_PARAMETERS_5(name)                                                             \
  HALVENOR_GL_PARAMETERS_4(name), HALVENOR_GL_ARGUMENT(name, 4) e
#define HALVENOR_GL_PARAMETERS_6(name)                                                             \
  HALVENOR_GL_PARAMETERS_5(name), HALVENOR_GL_ARGUMENT(name, 5) f
#define HALVENOR_GL_PARAMETERS_7(name)                                                             \
  HALVENOR_GL_PARAMETERS_6(name), HALVENOR_GL_ARGUMENT(name, 6) g
#define HALVENOR_GL_PARAMETERS_8(name)                                                             \
  HALVENOR_GL_PARAMETERS_7(name), HALVENOR_GL_ARGUMENT(name, 7) h
#define HALVENOR_GL_PARAMETERS_9(name)                                                             \
  HALVENOR_GL_PARAMETERS_8(name), HALVENOR_GL_ARGUMENT(name, 8) i
#define HALVENOR_GL_VALUES_0
#define HALVENOR_GL_VALUES_1 a
#define HALVENOR_GL_VALUES_2 a, b
#define HALVENOR_GL_VALUES_3 a, b, c
#define HALVENOR_GL_VALUES_4 a, b, c, d
#define HALVENOR_GL_VALUES_5 a, b, c, d, e
#define HALVENOR_GL_VALUES_6 a, b, c, d, e, f
#define HALVENOR_GL_VALUES_7 a, b, c, d, e, f, g
#define HALVENOR_GL_VALUES_8 a, b, c, d, e, f, g, h
#define HALVENOR_GL_VALUES_9 a, b, c, d, e, f, g, h, i

#define HALVENOR_DEFINE_GL(arity, name, kinds)                                                     \
  extern "C" halvenor::bench::Parts<decltype(name)>::Result name(                                  \
      HALVENOR_GL_PARAMETERS_##arity(name)) {                                                      \
    using Result = halvenor::bench::Parts<decltype(name)>::Result;                                 \
    return halvenor::bench::Serve<halvenor::bench::Function::name, Result>(                        \
        HALVENOR_GL_VALUES_##arity);                                                               \
  }
