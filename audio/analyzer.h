// From sound to audio records: waveform and spectrum of every 50 ms.
//
// Magnitudes. Each record is seen through three Hann windows of 2048 frames, a third of its 50 ms
// apart (as a rule centered in the thirds), each transformed at 4096 points (8 points per bin
// of 86.13 Hz). A bin's level is the highest one found within half a bin of its frequency in any
// window, peaks that fall between two points interpolated. A level L, in decibels below a
// full-scale sine, becomes
//
//   255 x ((L + 80) / 80)^2,   0 below -80 dB
//
// so a full-scale sine reaches 255 at every frequency, -10 dB is 195, -30 dB 100, -60 dB 16, and
// silence is exactly 0, the noise of 16-bit sound as well. Mastered music has means of about 20 to
// 50 over bins 0 to 255: a linear range would leave it flat on the floor, a plain decibel range
// flat under the ceiling; the square lets its peaks stand out.
#pragma once

#include "protocol/render_visual_data.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace halvenor {

inline constexpr int kAnalysisRate = 44100;           ///< frames a second
inline constexpr std::size_t kFramesPerRecord = 2205; ///< 50 ms

/// Milliseconds by which what is shown may be set earlier or later than what is heard.
inline constexpr int kMostOffset = 2000;

/// Record `index` shows the sound from 50 x index to 50 x index + 50 ms.
struct AnalyzedSound {
  std::uint64_t index;
  RenderVisualData record; ///< two waveform and two spectrum channels
  /// The record's frames, left and right alternating, within -1..+1: `kFramesPerRecord` of them,
  /// fewer in a last record that is partly padding. Valid during the call that hands it over.
  std::span<const float> sound;
};

/// Which sound a record's windows see.
enum class AnalysisWindows {
  Centered, ///< up to 15 ms on both sides of the record
  Past      ///< up to 30 ms before it, none after it: for sound that is heard already
};

/// Not safe for concurrent calls; allocates nothing after construction.
class Analyzer {
public:
  /// Receives the records in order, from within `Push` and `Flush`; must not call the analyzer.
  using Receiver = std::function<void(const AnalyzedSound&)>;

  explicit Analyzer(Receiver receiver, AnalysisWindows windows = AnalysisWindows::Centered);
  ~Analyzer();
  Analyzer(const Analyzer&) = delete;
  Analyzer& operator=(const Analyzer&) = delete;

  /// Takes stereo sound at `kAnalysisRate`, left and right alternating (an odd last value is
  /// ignored). Values beyond -1..+1 are clipped, those that are no number are silence. A record
  /// comes with the last frame that its windows see.
  void Push(std::span<const float> sound);

  /// Ends the sound: yields what is left, the last record padded with silence, and starts anew at
  /// record 0. Sound of any length yields its length / 50 ms records, rounded up.
  void Flush();

  /// Forgets everything pushed and starts anew at record 0.
  void Reset();

private:
  struct Transform;

  void Take(float left, float right);
  void AnalyzeRecord(std::size_t frames);

  Receiver receiver_;
  std::unique_ptr<Transform> transform_;
};

/// The record of silence.
const RenderVisualData& SilentRecord();

/// Where a level meter stands for sound of that peak (1 is full scale): 0 up to -60 dBFS, 1 from
/// full scale on, and even steps of decibels between. Already logarithmic: show it as it is.
float MeterLevel(float peak);
/// The same of a record, by the peak of its waveform; -42 dBFS is its least step.
float MeterLevel(const RenderVisualData& record);

} // namespace halvenor
