#include "bench/gl_tape.h"

#include "gl_calls/current_table.h"

#include <atomic>
#include <cstring>
#include <ctime>
#include <tuple>
#include <type_traits>

namespace halvenor::bench {
namespace {

using gl_calls::Function;

std::atomic<GlTape*> recording = nullptr;
const gl_calls::Table* driver = nullptr;

// What ends one part of a frame and begins another.
constexpr struct {
  Part from;
  Function function;
  GLenum name; // 0: any
  Part to;
} kTurns[] = {
    {Part::Feedback, Function::glInterleavedArrays, 0, Part::Lines},
    {Part::Lines, Function::glBegin, 0, Part::Band},
    {Part::Band, Function::glEnable, GL_VERTEX_PROGRAM_ARB, Part::Blur},
    {Part::Blur, Function::glDisable, GL_VERTEX_PROGRAM_ARB, Part::Picture},
    {Part::Picture, Function::glInterleavedArrays, 0, Part::Overlay},
    {Part::Picture, Function::glEnable, GL_VERTEX_PROGRAM_ARB, Part::Composite},
    {Part::Overlay, Function::glEnable, GL_VERTEX_PROGRAM_ARB, Part::Composite},
    {Part::Composite, Function::glDisable, GL_VERTEX_PROGRAM_ARB, Part::Texts},
};

// What a steady frame consists of. Pixel storage is the affair of the read-back, which the driver
// alone does without; what else goes by pointer asks, or sets up.
template <Function F, class... Arguments>
constexpr bool kIsOfFrame = F == Function::glInterleavedArrays ||
                            (F != Function::glPixelStorei &&
                             !(std::is_pointer_v<Arguments> || ...));

// The driver's function, which the tape takes down while it records.
template <Function F, class Signature>
struct Taped;
template <Function F, class Result, class... Arguments>
struct Taped<F, Result(Arguments...)> {
  static Result Call(Arguments... arguments) {
    if constexpr (kIsOfFrame<F, Arguments...>) {
      if (GlTape* const tape = recording.load(std::memory_order_relaxed))
        Record(*tape, arguments...);
    }
    return OfDriver()(arguments...);
  }

private:
  static auto OfDriver() { return gl_calls::Member<F>(*driver); }

  static void Record(GlTape& tape, Arguments... arguments) {
    std::tuple<Arguments...> values(arguments...);
    if constexpr (sizeof...(Arguments) > 0) {
      if constexpr (std::is_same_v<std::tuple_element_t<0, std::tuple<Arguments...>>, GLenum>)
        tape.Enter(F, std::get<0>(values));
    }
    if constexpr (F == Function::glInterleavedArrays)
      std::get<2>(values) = tape.Keep(std::get<2>(values));
    tape.Add([values] { std::apply(OfDriver(), values); });
  }
};

constexpr gl_calls::Table kTaped = gl_calls::MakeTable<Taped>();

const gl_calls::Table* Intercept(const gl_calls::Table* table) {
  driver = table;
  return &kTaped;
}

GLuint BoundFrameBuffer() {
  GLint bound = 0;
  driver->glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &bound);
  return static_cast<GLuint>(bound);
}

} // namespace

double ProcessorMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

/// The tape's context on this thread, for a scope.
class GlTape::Current {
public:
  explicit Current(const GlTape& tape) : tape_(tape) {
    eglMakeCurrent(tape.display_, EGL_NO_SURFACE, EGL_NO_SURFACE, tape.context_);
  }
  ~Current() { eglMakeCurrent(tape_.display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT); }
  Current(const Current&) = delete;
  Current& operator=(const Current&) = delete;

private:
  const GlTape& tape_;
};

void GlTape::InterceptCalls() {
  gl_calls::SetInterceptor(Intercept);
}

void GlTape::Start() {
  calls_.clear();
  part_ = Part::Feedback;
  frame_buffer_ = 0;
  recording = this;
}

void GlTape::Stop() {
  recording = nullptr;
}

void GlTape::Add(std::function<void()> play) {
  if (calls_.empty()) {
    display_ = eglGetCurrentDisplay();
    context_ = eglGetCurrentContext();
  }
  // The platform layer chooses what is drawn into, past the table.
  if (const GLuint bound = BoundFrameBuffer(); calls_.empty() || bound != frame_buffer_) {
    frame_buffer_ = bound;
    calls_.push_back({[bound] { glBindFramebuffer(GL_FRAMEBUFFER, bound); }, part_});
  }
  calls_.push_back({std::move(play), part_});
}

void GlTape::Enter(Function function, unsigned name) {
  for (const auto& turn : kTurns) {
    if (turn.from != part_ || turn.function != function) continue;
    if (turn.name != 0 && turn.name != name) continue;
    part_ = turn.to;
    return;
  }
}

void GlTape::Play() const {
  const Current current(*this);
  for (const Call& call : calls_)
    call.play();
  glFinish();
}

PartTimes GlTape::PlayInParts() const {
  const Current current(*this);
  PartTimes times{};
  Part part = Part::Feedback;
  double begun = ProcessorMilliseconds();
  const auto end = [&] {
    glFinish();
    const double now = ProcessorMilliseconds();
    times[static_cast<std::size_t>(part)] += now - begun;
    begun = now;
  };
  for (const Call& call : calls_) {
    if (call.part != part) {
      end();
      part = call.part;
    }
    call.play();
  }
  end();
  return times;
}

std::vector<std::uint8_t> GlTape::Picture(int width, int height) const {
  const Current current(*this);
  const std::size_t rowBytes = std::size_t{4} * static_cast<std::size_t>(width);
  std::vector<std::uint8_t> picture(rowBytes * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y)
    glReadPixels(0, height - 1 - y, width, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                 &picture[rowBytes * static_cast<std::size_t>(y)]);
  return picture;
}

const Spectrum::Vertex* GlTape::Keep(const void* vertices) {
  std::memcpy(vertices_.data(), vertices, sizeof vertices_);
  return vertices_.data();
}

} // namespace halvenor::bench
