// The audio record that a host delivers about every 50 milliseconds.
#pragma once

#include <cstddef>
#include <cstdint>

namespace halvenor {

inline constexpr int kAudioChannels = 2;
inline constexpr int kSamplesPerChannel = 512;

/// Milliseconds of sound that one record stands for; the plug-in asks for this interval.
inline constexpr std::uint32_t kDeliveryMilliseconds = 50;

/// One delivery: 2050 bytes, the same on every machine.
struct RenderVisualData {
  std::uint8_t numWaveformChannels;                          ///< 0 to 2
  std::uint8_t waveform[kAudioChannels][kSamplesPerChannel]; ///< 128 is silence
  std::uint8_t numSpectrumChannels;                          ///< 0 to 2
  /// Magnitudes, low frequencies first. Bin i stands at i x 86.13 Hz; bins 256 to 511 are 0.
  std::uint8_t spectrum[kAudioChannels][kSamplesPerChannel];
};

static_assert(sizeof(RenderVisualData) == 2050);
static_assert(offsetof(RenderVisualData, waveform) == 1);
static_assert(offsetof(RenderVisualData, numSpectrumChannels) == 1025);
static_assert(offsetof(RenderVisualData, spectrum) == 1026);

} // namespace halvenor
