#include "tests/stand_ins/gl_recorder.h"

#include "gl_calls/current_table.h"
#include "platform/agl.h"
#include "tests/stand_ins/gl_effects.h"

#include <cstdio>
#include <span>
#include <type_traits>
#include <utility>

namespace halvenor::stand_ins {
namespace {

// Values with the names under which they are shown.
struct NamedValues {
  std::vector<std::string_view> names;
  std::vector<GLenum> values;
};
#define HALVENOR_NAMED(...)                                                                        \
  {                                                                                                \
    SplitList(#__VA_ARGS__), {                                                                     \
      __VA_ARGS__                                                                                  \
    }                                                                                              \
  }
// Blend factors and primitives share small numbers with others.
const NamedValues kEnumerants = HALVENOR_NAMED(
    AGL_BUFFER_NAME, AGL_BUFFER_RECT, GL_BGRA, GL_BLEND, GL_CLAMP, GL_CLAMP_TO_EDGE, GL_DEPTH_TEST,
    GL_EXTENSIONS, GL_FRAGMENT_PROGRAM_ARB, GL_FRONT, GL_LINEAR, GL_LINEAR_MIPMAP_LINEAR,
    GL_LINE_SMOOTH, GL_NEAREST, GL_NICEST, GL_PACK_ALIGNMENT, GL_PERSPECTIVE_CORRECTION_HINT,
    GL_PROGRAM_ERROR_POSITION_ARB, GL_PROGRAM_ERROR_STRING_ARB, GL_PROGRAM_FORMAT_ASCII_ARB,
    GL_REPEAT, GL_RGB, GL_RGBA, GL_T2F_V3F, GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER,
    GL_TEXTURE_MIN_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_UNPACK_ALIGNMENT,
    GL_UNPACK_ROW_LENGTH, GL_UNSIGNED_BYTE, GL_UNSIGNED_INT_8_8_8_8_REV, GL_V2F, GL_V3F,
    GL_VERTEX_PROGRAM_ARB);
const NamedValues kBlendFactors =
    HALVENOR_NAMED(GL_ZERO, GL_ONE, GL_SRC_COLOR, GL_ONE_MINUS_SRC_COLOR, GL_SRC_ALPHA,
                   GL_ONE_MINUS_SRC_ALPHA, GL_DST_COLOR, GL_ONE_MINUS_DST_COLOR);
const NamedValues kPrimitives =
    HALVENOR_NAMED(GL_POINTS, GL_LINES, GL_LINE_LOOP, GL_LINE_STRIP, GL_TRIANGLES,
                   GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN, GL_QUADS);
const NamedValues kClearBits = HALVENOR_NAMED(GL_COLOR_BUFFER_BIT);
#undef HALVENOR_NAMED

std::string NameIn(const NamedValues& known, GLenum value) {
  for (std::size_t i = 0; i < known.values.size(); ++i)
    if (known.values[i] == value) return std::string(known.names[i]);
  char text[16];
  std::snprintf(text, sizeof text, "0x%04X", value);
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
    return NameIn(kClearBits, number());
  default:
    return NumberText(value);
  }
}

template <class T>
void Show(Arguments& shown, char kind, T argument) {
  if constexpr (std::is_same_v<T, const GLuint*>) {
    // The argument before says how many names there are.
    const auto count = argument == nullptr || shown.numbers.back() < 0 ? 0 : shown.numbers.back();
    for (const GLuint name : std::span(argument, static_cast<std::size_t>(count)))
      Show(shown, 'n', name);
  } else if constexpr (std::is_pointer_v<T>) {
    std::string part = argument == nullptr ? "null" : "pointer";
    if constexpr (std::is_same_v<T, const GLubyte*>) {
      if (argument != nullptr)
        part = std::string("\"") + reinterpret_cast<const char*>(argument) + "\"";
    }
    shown.Add(std::move(part), static_cast<double>(reinterpret_cast<std::uintptr_t>(argument)));
  } else {
    shown.Add(ArgumentText(kind, static_cast<double>(argument)), static_cast<double>(argument));
  }
}

template <gl_calls::Function F, class Signature>
struct Recorder;
template <gl_calls::Function F, class Result, class... Values>
struct Recorder<F, Result(Values...)> {
  static constexpr auto kFunction = static_cast<Function>(F);

  static Result Call(Values... values) {
    const unsigned fault = Enter(kFunction);
    GlState& gl = TheGl();
    gl.CheckUse(kFunction);
    if (Recording()) {
      Arguments shown;
      [[maybe_unused]] const char* kinds =
          gl_calls::kDescriptions[static_cast<std::size_t>(F)].kinds;
      (Show(shown, *kinds++, values), ...);
      Record(kFunction, std::move(shown));
    }
    if (fault != 0) {
      InjectGlError(fault);
    } else if constexpr (requires { gl.Do(Of<kFunction>(), values...); }) {
      return gl.Do(Of<kFunction>(), values...);
    }
    return Result();
  }
};

// On every thread, so that calls without a current context are recorded and told as misuses.
[[maybe_unused]] const bool kIsInPlace = [] {
  gl_calls::without_context = gl_calls::MakeTable<Recorder>();
  return true;
}();

} // namespace

std::string EnumerantText(GLenum value) {
  return NameIn(kEnumerants, value);
}

} // namespace halvenor::stand_ins
