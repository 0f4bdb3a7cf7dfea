#define GL_GLEXT_PROTOTYPES
#include "tests/stand_ins/gl_recorder.h"

#include "tests/stand_ins/agl_stand_in.h"
#include "tests/stand_ins/recording.h"

#include <GL/gl.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
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
    return NameIn(kEnumerants, number());
  case 'b':
    return NameIn(kBlendFactors, number());
  case 'p':
    return NameIn(kPrimitives, number());
  case 'm':
    return MaskText(number());
  case '*':
    return value == 0 ? "null" : "pointer";
  default:
    return NumberText(value);
  }
}

template <class Argument>
double AsNumber(Argument argument) {
  if constexpr (std::is_pointer_v<Argument>) {
    return argument == nullptr ? 0.0 : 1.0;
  } else {
    return static_cast<double>(argument);
  }
}

// ---- The little state that OpenGL has here ----

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

void ReportGlMisuse(Function function, const char* what) {
  ReportMisuse(std::string(NameOf(function)) + " " + what);
}

bool AllowedBetweenBeginAndEnd(const char* name) {
  for (const char* prefix : {"glVertex", "glColor", "glTexCoord", "glCallList", "glEnd"}) {
    if (std::strncmp(name, prefix, std::strlen(prefix)) == 0) return true;
  }
  return false;
}

void CheckUse(Function function) {
  if (CurrentContextNumber() == 0) ReportGlMisuse(function, "without a current context");
  if (between_begin_and_end && !AllowedBetweenBeginAndEnd(NameOf(function))) {
    ReportGlMisuse(function, "between glBegin and glEnd");
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

// ---- What functions do beyond being recorded: by default nothing, with a result of zero ----

template <Function F, class Result, class... Arguments>
struct Effect {
  static Result Do(Arguments...) { return Result(); }
};

template <class Result, class... Arguments>
struct Effect<Function::glBegin, Result, Arguments...> {
  static void Do(GLenum) { between_begin_and_end = true; }
};

template <class Result, class... Arguments>
struct Effect<Function::glEnd, Result, Arguments...> {
  static void Do() {
    if (!between_begin_and_end) ReportGlMisuse(Function::glEnd, "without glBegin");
    between_begin_and_end = false;
  }
};

template <class Result, class... Arguments>
struct Effect<Function::glGenLists, Result, Arguments...> {
  static GLuint Do(GLsizei range) {
    if (range <= 0) return 0;
    live_lists.fetch_add(range, std::memory_order_relaxed);
    return next_list.fetch_add(static_cast<GLuint>(range), std::memory_order_relaxed);
  }
};

template <class Result, class... Arguments>
struct Effect<Function::glDeleteLists, Result, Arguments...> {
  static void Do(GLuint base, GLsizei range) {
    if (base != 0 && range > 0) live_lists.fetch_sub(range, std::memory_order_relaxed);
  }
};

template <class Result, class... Arguments>
struct Effect<Function::glGetError, Result, Arguments...> {
  static GLenum Do() {
    if (error_count.load(std::memory_order_relaxed) == 0) return GL_NO_ERROR;
    const std::lock_guard lock(error_mutex);
    if (errors.empty()) return GL_NO_ERROR;
    const GLenum error = errors.front();
    errors.pop_front();
    error_count.store(errors.size(), std::memory_order_relaxed);
    return error;
  }
};

template <class Result, class... Arguments>
struct Effect<Function::glInterleavedArrays, Result, Arguments...> {
  static void Do(GLenum format, GLsizei stride, const void* pointer) {
    interleaved.format.store(format, std::memory_order_relaxed);
    interleaved.stride.store(stride, std::memory_order_relaxed);
    interleaved.pointer.store(pointer, std::memory_order_relaxed);
  }
};

// ---- One call ----

template <Function F, class Result, class... Arguments>
Result Serve(const char* kinds, Arguments... arguments) {
  const unsigned fault = Enter(F);
  CheckUse(F);
  if (Recording()) {
    std::vector<std::string> parts;
    std::vector<double> numbers{AsNumber(arguments)...};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      parts.push_back(ArgumentText(kinds[i], numbers[i]));
    }
    std::vector<Vertex> vertices;
    if constexpr (F == Function::glDrawArrays) {
      const auto drawn = std::tuple(arguments...);
      vertices = DrawnVertices(std::get<1>(drawn), std::get<2>(drawn));
    }
    Record(F, parts, std::move(numbers), std::move(vertices));
  }
  if (fault != 0) {
    InjectGlError(fault);
    return Result();
  }
  return Effect<F, Result, Arguments...>::Do(arguments...);
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

void InjectGlError(unsigned code) {
  const std::lock_guard lock(error_mutex);
  errors.push_back(code);
  error_count.store(errors.size(), std::memory_order_relaxed);
}

std::int64_t LiveDisplayLists() {
  return live_lists.load(std::memory_order_relaxed);
}

void ResetGl() {
  interleaved.format = 0;
  interleaved.pointer = nullptr;
  next_list = 1;
  live_lists = 0;
  between_begin_and_end = false;
  const std::lock_guard lock(error_mutex);
  errors.clear();
  error_count = 0;
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
#define HALVENOR_ARGUMENTS_0
#define HALVENOR_ARGUMENTS_1 , a
#define HALVENOR_ARGUMENTS_2 , a, b
#define HALVENOR_ARGUMENTS_3 , a, b, c
#define HALVENOR_ARGUMENTS_4 , a, b, c, d

#define HALVENOR_DEFINE(arity, name, kinds)                                                        \
  extern "C" halvenor::stand_ins::Parts<decltype(name)>::Result name(                              \
      HALVENOR_PARAMETERS_##arity(name)) {                                                         \
    namespace here = halvenor::stand_ins;                                                          \
    static_assert(here::Parts<decltype(name)>::kArity == arity && sizeof kinds == arity + 1);      \
    return here::Serve<here::Function::name, here::Parts<decltype(name)>::Result>(                 \
        kinds HALVENOR_ARGUMENTS_##arity);                                                         \
  }

HALVENOR_GL_FUNCTIONS(HALVENOR_DEFINE)
