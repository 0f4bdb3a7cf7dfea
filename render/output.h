// Where finished frames go.
#pragma once

#include "render/options.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace halvenor::render {

/// Takes frames and sound in the order of time and makes a file of them, bounded in memory: a call
/// waits while the work behind it is behind. One thread. Any call may fail; then `Error` says why
/// in one line, and the output is only good for being destroyed, which leaves nothing half-written.
class Output {
public:
  virtual ~Output() = default;

  /// Room for the next frame: width x height RGBA pixels, top row first, rows without gaps. Valid
  /// until `FinishFrame`. Empty on failure.
  virtual std::span<std::uint8_t> NextFrame() = 0;
  /// The frame has been filled in.
  virtual bool FinishFrame() = 0;

  /// Sound that goes with the next frames: left and right alternating, at `kAnalysisRate`. Outputs
  /// without sound ignore it.
  virtual bool Sound(std::span<const float> sound) {
    (void)sound;
    return true;
  }
  /// No more sound will come.
  virtual bool EndSound() { return true; }

  /// All frames are there: brings the file under its name.
  virtual bool Finish() = 0;

  [[nodiscard]] const std::string& Error() const { return error_; }

protected:
  std::string error_;
};

/// The output that `options` ask for. `frames` is the descriptor that "-" stands for. On failure
/// returns null and leaves one line in `error`.
std::unique_ptr<Output> OpenOutput(const Options& options, bool hasSound, int frames,
                                   std::string& error);

// The outputs with a file of their own.
std::unique_ptr<Output> OpenPictureOutput(const Options& options, std::string& error);
std::unique_ptr<Output> OpenVideoOutput(const Options& options, bool hasSound, std::string& error);

/// The bytes of one frame.
inline std::size_t FrameBytes(const Options& options) {
  return std::size_t{4} * static_cast<std::size_t>(options.width) *
         static_cast<std::size_t>(options.height);
}

} // namespace halvenor::render
