// Sound files for tests, made with GStreamer's encoders in a folder that goes with its owner.
#pragma once

#include "tests/support/scratch_folder.h"

#include <functional>
#include <string>

namespace halvenor {

struct Sound {
  int rate = 44100;
  int channels = 2;
  double seconds = 1;
  /// The value of a channel at a time in seconds.
  std::function<double(double, int)> wave;
};

/// The sine of that frequency and amplitude, the same in every channel.
std::function<double(double, int)> Sine(double frequency, double amplitude = 1);

class SoundFolder {
public:
  SoundFolder();

  [[nodiscard]] std::string Path(const std::string& name) const { return root_ / name; }

  /// Writes `sound` through the elements described (such as "flacenc") and returns the path.
  std::string Write(const std::string& name, const std::string& encoder, const Sound& sound) const;
  std::string WriteBytes(const std::string& name, const std::string& bytes) const;
  /// A copy of the first `share` of a file.
  [[nodiscard]] std::string Truncate(const std::string& path, double share) const;

private:
  ScratchFolder root_;
};

} // namespace halvenor
