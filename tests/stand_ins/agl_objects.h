// What the parts of the context layer's stand-in share; suites use agl_stand_in.h.
#pragma once

#include "platform/agl.h"
#include "tests/stand_ins/recording.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// Plain members are the ones that the caller has to serialise; the thread sanitizer sees whether
// it does. The others serve the checks.
struct HalvenorContext {
  int number = 0;
  std::atomic<bool> destroyed{false};
  std::atomic<int> current_on{0}; // number of a thread, 0: none
  GrafPtr port = nullptr;
  GrafPtr last_port = nullptr;
  AGLPbuffer pbuffer = nullptr;  // only while `port` is null
  bool target_destroyed = false; // what drawing was directed to, and nothing since
  Rect port_bounds{};
  std::array<GLint, 4> buffer_rect{};
  bool buffer_rect_enabled = false;
  GLint buffer_name = 0;
  std::vector<std::uint8_t> frame;
  std::atomic<int> live_pbuffers{0};
};

namespace halvenor::stand_ins {

[[nodiscard]] AGLContext CurrentContext();

/// Makes `context` (null: none) current on this thread; a misuse when another thread has it.
void Switch(Function function, AGLContext context);

void LeaveError(GLenum error);
/// Leaves the error and is false.
GLboolean Refuse(GLenum error);

void ReportContextMisuse(Function function, const HalvenorContext* context, const char* what);

/// Null contexts, spent ones and injected faults, for every function that takes a context.
[[nodiscard]] bool MayGoOn(Function function, AGLContext context, unsigned fault);

/// Numbers in the order of making, or of appearance; 0 for null.
[[nodiscard]] int NumberOf(AGLContext context);
[[nodiscard]] int NumberOf(AGLPixelFormat format);
[[nodiscard]] int NumberOf(AGLPbuffer pbuffer);
[[nodiscard]] int NumberOf(GrafPtr port);

/// Puts the arguments of one call together.
class Line {
public:
  explicit Line(Function function) : function_(function), recording_(Recording()) {}
  ~Line() {
    if (recording_) Record(function_, parts_, std::move(arguments_));
  }
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  Line& operator<<(GLint number) { return recording_ ? Add(NumberText(number), number) : *this; }
  Line& operator<<(AGLContext context) { return Handle("context ", context); }
  Line& operator<<(AGLPixelFormat format) { return Handle("format ", format); }
  Line& operator<<(AGLPbuffer pbuffer) { return Handle("pbuffer ", pbuffer); }
  Line& operator<<(GrafPtr port) { return Handle("port ", port); }
  Line& Named(const char* name, GLint value) { return recording_ ? Add(name, value) : *this; }
  Line& Enumerant(GLenum value) { return recording_ ? Add(EnumerantText(value), value) : *this; }

private:
  template <class T>
  Line& Handle(const char* what, T handle) {
    if (!recording_) return *this;
    const int number = NumberOf(handle);
    return Add(number == 0 ? "null" : what + std::to_string(number), number);
  }

  Line& Add(std::string part, double argument) {
    parts_.push_back(std::move(part));
    arguments_.push_back(argument);
    return *this;
  }

  Function function_;
  bool recording_;
  std::vector<std::string> parts_;
  std::vector<double> arguments_;
};

} // namespace halvenor::stand_ins
