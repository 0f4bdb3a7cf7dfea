// From the sound of a capture stream to audio records that know when they are heard. Private to
// the audio library.
#pragma once

#include "audio/analyzer.h"
#include "audio/automatic_gain.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>

namespace halvenor {

/// From one record to the next.
inline constexpr auto kRecordTime = std::chrono::milliseconds(kDeliveryMilliseconds);

/// When the frames of a stream are heard, from the latencies reported again and again. Small
/// differences are noise and drift and are averaged; large ones that last are a jump.
class HeardClock {
public:
  using Clock = std::chrono::steady_clock;

  void Reset() { *this = {}; }
  /// `frame` is heard at `heard`, as far as is known now.
  void Observe(std::uint64_t frame, Clock::time_point heard);
  [[nodiscard]] Clock::time_point Heard(std::uint64_t frame) const;

private:
  std::optional<Clock::time_point> origin_;
  int jumping_ = 0; // observations in a row
};

/// Takes the sound of one stream after the other, lifts it by an automatic gain and analyzes it.
class CapturedRecords {
public:
  using Clock = std::chrono::steady_clock;

  struct Captured {
    std::uint64_t frame; ///< the first one
    float peak;          ///< of the sound before any gain
    RenderVisualData record;
  };

  /// Another stream begins. The gain stays: it is most likely the same music.
  void Restart();
  void ResetGain() { gain_.Reset(); }
  /// The next frame that is taken is heard at `heard`.
  void Observe(Clock::time_point heard) { clock_.Observe(frames_, heard); }
  /// Stereo sound at `kAnalysisRate`, left and right alternating.
  void Take(std::span<const float> sound);
  /// That many values of silence.
  void TakeSilence(std::size_t count);

  /// Takes out the oldest record that is heard at `now` or was within the last quarter second, when
  /// everything is shown `offset` later; drops those before it.
  std::optional<Captured> Next(Clock::time_point now, Clock::duration offset);

private:
  void TakePiece(std::span<const float> piece);
  void Keep(const AnalyzedSound& analyzed);

  AutomaticGain gain_;
  Analyzer analyzer_{[this](const AnalyzedSound& analyzed) { Keep(analyzed); },
                     AnalysisWindows::Past};
  HeardClock clock_;
  std::uint64_t frames_ = 0; // of this stream so far
  float peak_ = 0;           // of the record under way
  std::deque<Captured> kept_;
};

} // namespace halvenor
