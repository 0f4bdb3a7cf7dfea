// What the parts of the context layer's stand-in share; suites use agl_stand_in.h.
#pragma once

#include "platform/agl.h"
#include "tests/stand_ins/recording.h"

#include <array>
#include <memory>
#include <mutex>
#include <utility>

namespace halvenor::stand_ins {

/// Numbers count in the order of making.
struct Numbered {
  int number = 0;
  Relaxed<bool> destroyed{false};
};

} // namespace halvenor::stand_ins

// Plain members are the ones that the caller has to serialise; the thread sanitizer sees whether
// it does. The others serve the checks.
struct HalvenorPixelFormat : halvenor::stand_ins::Numbered {};
struct HalvenorContext : halvenor::stand_ins::Numbered {
  halvenor::stand_ins::Relaxed<int> current_on{0}; // number of a thread, 0: none
  halvenor::stand_ins::Relaxed<int> live_pbuffers{0};
  GrafPtr port = nullptr;
  GrafPtr last_port = nullptr;
  AGLPbuffer pbuffer = nullptr;  // only while `port` is null
  bool target_destroyed = false; // what drawing was directed to, and nothing since
  Rect port_bounds{};
  std::vector<std::uint8_t> frame;
};
struct HalvenorPBuffer : halvenor::stand_ins::Numbered {
  AGLContext context = nullptr;
  GLuint texture = 0;
};

namespace halvenor::stand_ins {

/// All objects of one kind. They stay in memory after their end, until Reset, so that a later use
/// is told and not a crash.
template <class Object>
class Objects {
public:
  Object* Make() {
    const std::lock_guard lock(mutex_);
    Object* made = all_.emplace_back(std::make_unique<Object>()).get();
    made->number = static_cast<int>(all_.size());
    live_.Add(1);
    return made;
  }
  /// Whether it was there until now.
  bool End(Object* object) {
    const bool first = !object->destroyed.Exchange(true);
    if (first) live_.Add(-1);
    return first;
  }
  [[nodiscard]] std::int64_t Live() const { return live_; }
  void Reset() {
    const std::lock_guard lock(mutex_);
    all_.clear();
    live_ = 0;
  }

private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<Object>> all_;
  Relaxed<std::int64_t> live_{0};
};

// Never destroyed: threads may still draw while the program ends.
inline Objects<HalvenorPixelFormat>& formats = *new Objects<HalvenorPixelFormat>;
inline Objects<HalvenorContext>& contexts = *new Objects<HalvenorContext>;
inline Objects<HalvenorPBuffer>& pbuffers = *new Objects<HalvenorPBuffer>;

[[nodiscard]] AGLContext CurrentContext();

/// Makes `context` (null: none) current on this thread; a misuse when another thread has it.
void Switch(Function function, AGLContext context);

void LeaveError(GLenum error);
/// Leaves the error and is false.
GLboolean Refuse(GLenum error);

/// "aglFoo: context 1 is ..."
void ReportMisuseOf(Function function, const std::string& object, const char* what);

/// Whether nothing keeps `context` from being used, but for a fault, which leaves its error.
[[nodiscard]] bool MayGoOn(Function function, AGLContext context, unsigned fault);

/// How an argument is shown.
template <class Object>
std::pair<std::string, double> Shown(const char* what, const Object* object) {
  if (object == nullptr) return {"null", 0.0};
  return {what + std::to_string(object->number), object->number};
}
inline auto Show(AGLContext context) {
  return Shown("context ", context);
}
inline auto Show(AGLPixelFormat format) {
  return Shown("format ", format);
}
inline auto Show(AGLPbuffer pbuffer) {
  return Shown("pbuffer ", pbuffer);
}
inline auto Show(GLint number) {
  return std::pair<std::string, double>(NumberText(number), number);
}
inline auto Show(GLenum value) {
  return std::pair<std::string, double>(EnumerantText(value), value);
}
/// Ports are numbered in the order of appearance.
std::pair<std::string, double> Show(GrafPtr port);

/// Enters the function and records the call.
template <class... Values>
[[nodiscard]] unsigned Begin(Function function, Values... values) {
  const unsigned fault = Enter(function);
  if (Recording()) {
    Arguments shown;
    [[maybe_unused]] const auto add = [&shown](auto part) {
      shown.Add(std::move(part.first), part.second);
    };
    (add(Show(values)), ...);
    Record(function, std::move(shown));
  }
  return fault;
}

/// The same for a function of `context`, and whether it may go on.
template <class... Values>
[[nodiscard]] bool BeginWith(Function function, AGLContext context, Values... values) {
  return MayGoOn(function, context, Begin(function, context, values...));
}

} // namespace halvenor::stand_ins
