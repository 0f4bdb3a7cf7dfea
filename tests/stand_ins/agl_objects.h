// The objects of the context layer's stand-in, and how its calls are recorded.
#pragma once

#include "platform/agl.h"
#include "tests/stand_ins/recording.h"

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

// Plain members are the ones that the caller has to serialize; the thread sanitizer sees whether
// it does. The others serve the checks.
struct HalvenorPixelFormat : halvenor::stand_ins::Numbered {};
struct HalvenorContext : halvenor::stand_ins::Numbered {
  halvenor::stand_ins::Relaxed<int> current_on{0}; // number of a thread, 0: none
  halvenor::stand_ins::Relaxed<int> live_pbuffers{0};
  GrafPtr port = nullptr; // null: nothing, or a pbuffer
  GrafPtr last_port = nullptr;
  Rect port_bounds{};
  std::vector<std::uint8_t> frame;
};
struct HalvenorPBuffer : halvenor::stand_ins::Numbered {
  AGLContext context = nullptr;
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
  void End(Object* object) {
    object->destroyed = true;
    live_.Add(-1);
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

/// How an argument is shown. Ports are numbered in the order of appearance.
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

} // namespace halvenor::stand_ins
