// Lifts quiet sound before it is analyzed, so that the picture does not depend on volume knobs.
#pragma once

#include "protocol/render_visual_data.h"

#include <span>

namespace halvenor {

/// A gain of 0 to 40 dB that brings the mean of bins 0 to 255 of quiet sound into the range of
/// mastered music (15 to 60), as far as the peaks leave room: no value is driven beyond full scale.
/// It rises slowly, 6 dB a second, and falls within a few records. Noise below -70 dBFS lets it
/// sink; what is exactly 0 stays 0. Not safe for concurrent calls; never allocates.
class AutomaticGain {
public:
  /// Lifts `sound`, the next piece of it (left and right alternating, 10 to 100 ms).
  void Apply(std::span<float> sound);
  /// Takes notice of a record of the sound that was lifted.
  void Observe(const RenderVisualData& record);
  /// Starts anew at 0 dB.
  void Reset() { *this = {}; }

  [[nodiscard]] float Decibels() const { return decibels_; }

private:
  float decibels_ = 0; // what the last piece ended with
  float wanted_ = 0;
  float loudest_ = 0; // of the pieces since the last record, before any gain
};

} // namespace halvenor
