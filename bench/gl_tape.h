// Plays back the OpenGL calls of one frame, to see what the driver alone takes for it.
#pragma once

#include "scene/spectrum.h"

#include <array>
#include <cstddef>
#include <vector>

namespace halvenor::bench {

/// The calls of a frame. A program that links this defines the OpenGL functions that the plug-in
/// uses: they go on to the driver and, while a tape records, onto the tape.
///
/// One tape records at a time. Start and stop while no frame is being drawn; the frame itself may
/// be drawn on any thread.
class GlTape {
public:
  void Start();
  void Stop();

  /// Makes the recorded calls again, straight to the driver, on the context that is current here.
  /// Display lists have to have the names that they had.
  void Play() const;

  [[nodiscard]] std::size_t Length() const { return calls_.size(); }

  struct Call {
    void (*play)(const Call& call);
    alignas(void*) std::array<std::byte, 24> arguments;
  };
  /// Adds one call. The vertices are copied: the plug-in will have others by then.
  void Add(const Call& call) { calls_.push_back(call); }
  const Spectrum::Vertex* Keep(const void* vertices);

private:
  std::vector<Call> calls_;
  std::array<Spectrum::Vertex, std::size_t{2} * Spectrum::kVerticesPerChannel> vertices_{};
};

} // namespace halvenor::bench
