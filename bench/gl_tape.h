// Plays back the OpenGL calls of one frame, to see what the driver alone takes for it.
#pragma once

#include "gl_calls/gl_table.h"
#include "scene/spectrum.h"

#include <EGL/egl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace halvenor::bench {

/// The parts of a default frame, in their order.
enum class Part : std::size_t { Feedback, Lines, Band, Blur, Picture, Overlay, Composite, Texts };
inline constexpr std::array<const char*, 8> kPartNames = {
    "feedback", "lines", "band", "four blur passes", "picture", "overlay", "composite", "texts"};
/// Processor time of all threads so far.
double ProcessorMilliseconds();
/// Processor time of each part, in milliseconds.
using PartTimes = std::array<double, kPartNames.size()>;

/// The calls of a frame and the context that they were made on.
///
/// One tape records at a time. Start and stop while no frame is being drawn; the frame itself may
/// be drawn on any thread.
class GlTape {
public:
  /// From now on the plug-in's calls pass by the tapes on their way to the driver. To be called
  /// once, before there is a context.
  static void InterceptCalls();

  void Start();
  void Stop();

  /// Makes the recorded calls again, straight to the driver, on their own context, which must be
  /// current nowhere else, and returns when the driver has finished. A frame draws over all that it
  /// does not read, so that this draws the same picture again.
  void Play() const;
  /// The same, each part finished before the next begins.
  [[nodiscard]] PartTimes PlayInParts() const;
  /// The picture that the last play has drawn, RGBA, top row first.
  [[nodiscard]] std::vector<std::uint8_t> Picture(int width, int height) const;

  [[nodiscard]] std::size_t Length() const { return calls_.size(); }

  /// Adds one call. The vertices are copied: the plug-in will have others by then.
  void Add(std::function<void()> play);
  /// Has the part that `function`, with a first argument of `name`, begins begin.
  void Enter(gl_calls::Function function, unsigned name);
  const Spectrum::Vertex* Keep(const void* vertices);

private:
  class Current;
  struct Call {
    std::function<void()> play;
    Part part;
  };

  std::vector<Call> calls_;
  Part part_ = Part::Feedback;
  GLuint frame_buffer_ = 0; ///< bound for the call recorded last
  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLContext context_ = EGL_NO_CONTEXT;
  std::array<Spectrum::Vertex, std::size_t{2} * Spectrum::kVerticesPerChannel> vertices_{};
};

} // namespace halvenor::bench
