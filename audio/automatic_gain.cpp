#include "audio/automatic_gain.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace halvenor {

namespace {

constexpr float kMostDecibels = 40;
constexpr float kRisePerRecord = 0.3F;
constexpr float kFallPerRecord = 2;
constexpr float kNoiseFallPerRecord = 1;
constexpr float kNoiseFloor = 0.000316F; // -70 dBFS
// Well inside of 15 to 60, so that the mean stays there while the music goes up and down.
constexpr float kLowMean = 28;
constexpr float kHighMean = 45;

float Factor(float decibels) {
  return std::pow(10.0F, decibels / 20);
}

float Mean(const RenderVisualData& record) {
  constexpr int kMeanBins = 256;
  int sum = 0;
  for (const auto& channel : record.spectrum)
    sum = std::accumulate(channel, channel + kMeanBins, sum);
  return static_cast<float>(sum) / (kAudioChannels * kMeanBins);
}

} // namespace

void AutomaticGain::Apply(std::span<float> sound) {
  float peak = 0;
  for (const float value : sound)
    if (std::fabs(value) > peak) peak = std::fabs(value);
  loudest_ = std::max(loudest_, peak);
  if (peak > 0) wanted_ = std::clamp(-20 * std::log10(peak), 0.0F, wanted_);

  float from = Factor(decibels_);
  const float to = Factor(wanted_);
  if (from * peak > 1) from = to;
  decibels_ = wanted_;
  if (from == 1 && to == 1) return;
  const float step = (to - from) / static_cast<float>(std::max<std::size_t>(1, sound.size()));
  for (float& value : sound) {
    from += step;
    value *= from;
  }
}

void AutomaticGain::Observe(const RenderVisualData& record) {
  const float mean = Mean(record);
  if (loudest_ >= kNoiseFloor) {
    if (mean < kLowMean) wanted_ = std::min(kMostDecibels, wanted_ + kRisePerRecord);
    if (mean > kHighMean) wanted_ = std::max(0.0F, wanted_ - kFallPerRecord);
  } else if (loudest_ > 0) { // a rest of exact silence between two pieces leaves the gain
    wanted_ = std::max(0.0F, wanted_ - kNoiseFallPerRecord);
  }
  loudest_ = 0;
}

} // namespace halvenor
