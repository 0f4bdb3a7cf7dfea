#define GL_GLEXT_PROTOTYPES
#include "tests/stand_ins/gl_recorder.h"

#include "tests/stand_ins/gl_effects.h"
#include "tests/stand_ins/recording.h"

#include <GL/glext.h>
#include <GL/glu.h>

#include <cstdio>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

namespace halvenor::stand_ins {
namespace {

// ---- How arguments are shown ----

struct NamedValue {
  GLenum value;
  const char* name;
};
#define HALVENOR_NAMED_VALUE(name) {name, #name},
constexpr NamedValue kEnumerants[] = {HALVENOR_GL_ENUMERANTS(HALVENOR_NAMED_VALUE)};
constexpr NamedValue kBlendFactors[] = {HALVENOR_GL_BLEND_FACTORS(HALVENOR_NAMED_VALUE)};
constexpr NamedValue kPrimitives[] = {HALVENOR_GL_PRIMITIVES(HALVENOR_NAMED_VALUE)};
constexpr NamedValue kClearBits[] = {HALVENOR_GL_CLEAR_BITS(HALVENOR_NAMED_VALUE)};
#undef HALVENOR_NAMED_VALUE

std::string Hexadecimal(GLenum value) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%04X", value);
  return text;
}

std::string NameIn(std::span<const NamedValue> names, GLenum value) {
  for (const NamedValue& known : names) {
    if (known.value == value) return known.name;
  }
  return Hexadecimal(value);
}

std::string MaskText(GLbitfield mask) {
  std::string text;
  for (const NamedValue& bit : kClearBits) {
    if ((mask & bit.value) == 0) continue;
    text.append(text.empty() ? "" : " | ").append(bit.name);
    mask &= ~bit.value;
  }
  if (mask != 0 || text.empty()) text.append(text.empty() ? "" : " | ").append(Hexadecimal(mask));
  return text;
}

std::string ArgumentText(char kind, double value) {
  const auto number = [value] { return static_cast<GLenum>(value); };
  switch (kind) {
  case 'e':
    return EnumerantText(number());
  case 'b':
    return NameIn(kBlendFactors, number());
  case 'p':
    return NameIn(kPrimitives, number());
  case 'm':
    return MaskText(number());
  default:
    return NumberText(value);
  }
}

// The arguments of one call as they are recorded.
struct Shown {
  std::vector<std::string> parts;
  std::vector<double> numbers;

  template <class Argument>
  void Add(char kind, Argument argument) {
    if constexpr (std::is_same_v<Argument, const GLuint*>) {
      // The argument before says how many names there are.
      const auto count = argument == nullptr || numbers.back() < 0 ? 0 : numbers.back();
      for (const GLuint name : std::span(argument, static_cast<std::size_t>(count)))
        Add('n', name);
    } else if constexpr (std::is_pointer_v<Argument>) {
      numbers.push_back(argument == nullptr ? 0.0 : 1.0);
      parts.emplace_back(argument == nullptr ? "null" : "pointer");
      if constexpr (std::is_same_v<Argument, const GLubyte*>) {
        if (argument == nullptr) return;
        parts.back() = std::string("\"") + reinterpret_cast<const char*>(argument) + "\"";
      }
    } else {
      numbers.push_back(static_cast<double>(argument));
      parts.push_back(ArgumentText(kind, numbers.back()));
    }
  }
};

// ---- One call ----

template <Function F, class Result, class... Arguments>
Result Serve(const char* kinds, Arguments... arguments) {
  const unsigned fault = Enter(F);
  CheckUse(F);
  if (Recording()) {
    Shown shown;
    (shown.Add(*kinds++, arguments), ...);
    std::vector<Vertex> vertices;
    if constexpr (F == Function::glDrawArrays) {
      const auto drawn = std::tuple(arguments...);
      vertices = DrawnVertices(std::get<1>(drawn), std::get<2>(drawn));
    }
    Record(F, shown.parts, std::move(shown.numbers), std::move(vertices));
  }
  if (fault != 0) {
    InjectGlError(fault);
    return Result();
  }
  if constexpr (requires { Do(Of<F>(), arguments...); }) {
    return Do(Of<F>(), arguments...);
  } else {
    return Result();
  }
}

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

} // namespace

std::string EnumerantText(GLenum value) {
  return NameIn(kEnumerants, value);
}

} // namespace halvenor::stand_ins

// ---- The functions themselves ----

#define HALVENOR_PARAMETERS_0(f)
#define HALVENOR_PARAMETERS_1(f) halvenor::stand_ins::ArgumentOf<decltype(f), 0> a
#define HALVENOR_PARAMETERS_2(f)                                                                   \
  HALVENOR_PARAMETERS_1(f), halvenor::stand_ins::ArgumentOf<decltype(f), 1> b
#define HALVENOR_PARAMETERS_3(f)                                                                   \
  HALVENOR_PARAMETERS_2(f), halvenor::stand_ins::ArgumentOf<decltype(f), 2> c
#define HALVENOR_PARAMETERS_4(f)                                                                   \
  HALVENOR_PARAMETERS_3(f), halvenor::stand_ins::ArgumentOf<decltype(f), 3> d
#define HALVENOR_PARAMETERS_6(f)                                                                   \
  HALVENOR_PARAMETERS_4(f), halvenor::stand_ins::ArgumentOf<decltype(f), 4> e,                     \
      halvenor::stand_ins::ArgumentOf<decltype(f), 5> g
#define HALVENOR_PARAMETERS_7(f)                                                                   \
  HALVENOR_PARAMETERS_6(f), halvenor::stand_ins::ArgumentOf<decltype(f), 6> h
#define HALVENOR_PARAMETERS_9(f)                                                                   \
  HALVENOR_PARAMETERS_7(f), halvenor::stand_ins::ArgumentOf<decltype(f), 7> i,                     \
      halvenor::stand_ins::ArgumentOf<decltype(f), 8> j
#define HALVENOR_ARGUMENTS_0
#define HALVENOR_ARGUMENTS_1 , a
#define HALVENOR_ARGUMENTS_2 , a, b
#define HALVENOR_ARGUMENTS_3 , a, b, c
#define HALVENOR_ARGUMENTS_4 , a, b, c, d
#define HALVENOR_ARGUMENTS_6 , a, b, c, d, e, g
#define HALVENOR_ARGUMENTS_7 , a, b, c, d, e, g, h
#define HALVENOR_ARGUMENTS_9 , a, b, c, d, e, g, h, i, j

#define HALVENOR_DEFINE(arity, name, kinds)                                                        \
  extern "C" halvenor::stand_ins::Parts<decltype(name)>::Result name(                              \
      HALVENOR_PARAMETERS_##arity(name)) {                                                         \
    namespace here = halvenor::stand_ins;                                                          \
    static_assert(here::Parts<decltype(name)>::kArity == arity && sizeof kinds == arity + 1);      \
    return here::Serve<here::Function::name, here::Parts<decltype(name)>::Result>(                 \
        kinds HALVENOR_ARGUMENTS_##arity);                                                         \
  }

HALVENOR_GL_FUNCTIONS(HALVENOR_DEFINE)
