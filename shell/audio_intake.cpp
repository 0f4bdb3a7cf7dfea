#include "shell/audio_intake.h"

#include "shell/plugin_state.h"

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

constexpr int kAnalyzedBins = 256;
constexpr int kLowestTopBin = 100;

// Smooths the bins of one channel and returns the sum of the new magnitudes.
float SmoothChannel(std::uint8_t* smoothed, const std::uint8_t* magnitudes) {
  float sum = 0.0F;
  for (int i = 0; i < kAnalyzedBins; ++i) {
    const float magnitude = magnitudes[i];
    sum += magnitude;
    const float share = magnitude * 0.35F;
    smoothed[i] =
        static_cast<std::uint8_t>(std::fma(static_cast<float>(smoothed[i]), 0.65F, share));
  }
  return sum;
}

float SmoothLevel(float level, float sum) {
  const auto decayed = static_cast<float>(0.99 * level);
  return static_cast<float>(0.95 * decayed + 0.05 * (sum / 65536.0));
}

// The highest bin of any delivered channel that stands out, or the lowest that may be answered.
int TopBin(const VisualPluginData& record, int channels) {
  const float threshold = 128.0F * record.loudness;
  int candidate = kLowestTopBin;
  for (int channel = 0; channel < channels; ++channel) {
    for (int bin = kAnalyzedBins - 1; bin > candidate; --bin) {
      if (static_cast<float>(record.smoothedSpectrum[channel][bin]) > threshold) candidate = bin;
    }
  }
  return candidate;
}

} // namespace

void ProcessRenderData(VisualPluginData* record, const RenderVisualData* data) {
  if (data == nullptr) {
    MemClear(&record->renderData, sizeof record->renderData);
    return;
  }
  record->renderData = *data;
  const int channels = std::min<int>(data->numSpectrumChannels, kAudioChannels);
  for (int channel = 0; channel < channels; ++channel) {
    const float sum = SmoothChannel(record->smoothedSpectrum[channel], data->spectrum[channel]);
    record->channelLevel[channel] = SmoothLevel(record->channelLevel[channel], sum);
  }
  record->loudness = static_cast<float>(0.99 * record->loudness + 0.005 * record->channelLevel[0] +
                                        0.005 * record->channelLevel[1]);
  record->highestActiveBin =
      static_cast<float>(0.99 * record->highestActiveBin + 0.01 * TopBin(*record, channels));
}

void ResetRenderData(VisualPluginData* record) {
  MemClear(&record->renderData, sizeof record->renderData);
  std::fill(std::begin(record->channelLevel), std::end(record->channelLevel), 0.0F);
}

} // namespace halvenor
