#include "bench/gl_tape.h"

#include "bench/gl_definitions.h"

#include <atomic>
#include <cstring>
#include <dlfcn.h>
#include <new>
#include <type_traits>

namespace halvenor::bench {
namespace {

std::atomic<GlTape*> recording = nullptr;

#define HALVENOR_GL_NAME(arity, name, kinds) #name,
constexpr const char* kNames[] = {HALVENOR_GL_FUNCTIONS(HALVENOR_GL_NAME)};
#undef HALVENOR_GL_NAME

// The driver's function behind the one of that name here.
template <Function F, class Result, class... Arguments>
struct Driver {
  static inline const auto call = reinterpret_cast<Result (*)(Arguments...)>(
      dlsym(RTLD_NEXT, kNames[static_cast<std::size_t>(F)]));
};

template <Function F, class Result, class... Arguments>
void Record(GlTape& tape, Arguments... arguments) {
  using Values = std::tuple<Arguments...>;
  GlTape::Call call{};
  static_assert(sizeof(Values) <= sizeof call.arguments);
  static_assert(alignof(Values) <= alignof(void*));
  auto* const values = new (call.arguments.data()) Values(arguments...);
  if constexpr (F == Function::glInterleavedArrays)
    std::get<2>(*values) = tape.Keep(std::get<2>(*values));
  call.play = [](const GlTape::Call& recorded) {
    std::apply(Driver<F, Result, Arguments...>::call,
               *std::launder(reinterpret_cast<const Values*>(recorded.arguments.data())));
  };
  tape.Add(call);
}

// What a steady frame consists of. Pixel storage is the affair of the read-back, which the driver
// alone does without; what else goes by pointer asks, or sets up.
template <Function F, class... Arguments>
constexpr bool kIsOfFrame = F == Function::glInterleavedArrays ||
                            (F != Function::glPixelStorei &&
                             !(std::is_pointer_v<Arguments> || ...));

template <Function F, class Result, class... Arguments>
Result Serve(Arguments... arguments) {
  if constexpr (kIsOfFrame<F, Arguments...>) {
    if (GlTape* const tape = recording.load(std::memory_order_relaxed))
      Record<F, Result>(*tape, arguments...);
  }
  return Driver<F, Result, Arguments...>::call(arguments...);
}

} // namespace

void GlTape::Start() {
  calls_.clear();
  recording = this;
}

void GlTape::Stop() {
  recording = nullptr;
}

void GlTape::Play() const {
  for (const Call& call : calls_)
    call.play(call);
}

const Spectrum::Vertex* GlTape::Keep(const void* vertices) {
  std::memcpy(vertices_.data(), vertices, sizeof vertices_);
  return vertices_.data();
}

} // namespace halvenor::bench

HALVENOR_GL_FUNCTIONS(HALVENOR_DEFINE_GL)
