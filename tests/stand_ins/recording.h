// How the stand-ins write to the log; suites use call_log.h.
#pragma once

#include "gl_calls/gl_table.h"
#include "tests/stand_ins/call_log.h"

#include <atomic>
#include <cstddef>

namespace halvenor::stand_ins {

/// The functions of the platform layer that have stand-ins.
#define HALVENOR_PLATFORM_FUNCTIONS                                                                \
  aglChoosePixelFormat, aglDestroyPixelFormat, aglCreateContext, aglDestroyContext, aglSetInteger, \
      aglEnable, aglSetDrawable, aglSetCurrentContext, aglUpdateContext, aglSwapBuffers,           \
      aglCreatePBuffer, aglDestroyPBuffer, aglTexImagePBuffer, aglSetPBuffer, aglGetVirtualScreen, \
      aglGetError, aglErrorString, GetFNum, aglUseFont, CFBundleGetBundleWithIdentifier,           \
      CFBundleCopyResourcesDirectoryURL, CFBundleCopyPrivateFrameworksURL, CFBundleCreate,         \
      CFBundleLoadExecutable, CFBundleGetFunctionPointerForName,                                   \
      CFURLCreateCopyAppendingPathComponent, CFURLGetFileSystemRepresentation, CFRelease

/// Every function that a stand-in defines, those of OpenGL first and numbered as in gl_table.h.
#define HALVENOR_GL_ENUMERATOR(name, kinds) name,
enum class Function : std::size_t {
  HALVENOR_GL_FUNCTIONS(HALVENOR_GL_ENUMERATOR) HALVENOR_PLATFORM_FUNCTIONS,
  kCount
};
#undef HALVENOR_GL_ENUMERATOR

/// An atomic that puts no thread's work in order with another's: the thread sanitizer is to see
/// what the code under test leaves unordered.
template <class T>
class Relaxed {
public:
  Relaxed(T value = T()) : value_(value) {}
  operator T() const { return value_.load(std::memory_order_relaxed); }
  void operator=(T value) { value_.store(value, std::memory_order_relaxed); }
  /// These give the former value.
  T Add(T more) { return value_.fetch_add(more, std::memory_order_relaxed); }
  T Exchange(T value) { return value_.exchange(value, std::memory_order_relaxed); }
  /// Whether it was `expected` and is now `value`.
  bool Replace(T expected, T value) {
    return value_.compare_exchange_strong(expected, value, std::memory_order_relaxed);
  }

private:
  std::atomic<T> value_;
};

/// "a, b, c" in its parts, which live as long as `list`.
[[nodiscard]] std::vector<std::string_view> SplitList(std::string_view list,
                                                      std::string_view separator = ", ");

[[nodiscard]] std::string_view NameOf(Function function);

/// Runs the hook of `function`, counts the call, and yields the error with which it is to fail, or
/// 0.
[[nodiscard]] unsigned Enter(Function function);

[[nodiscard]] bool Recording();

/// The arguments of one call as they are recorded.
struct Arguments {
  std::vector<std::string> parts;
  std::vector<double> numbers;

  void Add(std::string part, double number) {
    parts.push_back(std::move(part));
    numbers.push_back(number);
  }
};

/// A number and an enumerant as recorded calls show them.
[[nodiscard]] std::string NumberText(double value);
[[nodiscard]] std::string EnumerantText(GLenum value);

/// Adds one call; callers ask `Recording` first. The text is "name(parts, joined)".
void Record(Function function, Arguments arguments);

/// Adds one line to the misuses.
void ReportMisuse(std::string line);

/// The parts of `Reset` that the stand-ins keep to themselves.
void ResetGl();
void ResetAgl();
void ResetBundle();

} // namespace halvenor::stand_ins
