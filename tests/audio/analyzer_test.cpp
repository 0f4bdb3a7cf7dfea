#include "audio/analyzer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace halvenor {
namespace {

struct Kept {
  RenderVisualData record;
  std::vector<float> sound;
};

std::vector<Kept> Analyze(const std::vector<float>& sound, std::size_t chunk = 1000) {
  std::vector<Kept> kept;
  Analyzer analyzer([&](const AnalyzedSound& analyzed) {
    EXPECT_EQ(analyzed.index, kept.size());
    kept.push_back({analyzed.record, {analyzed.sound.begin(), analyzed.sound.end()}});
  });
  for (std::size_t i = 0; i < sound.size(); i += chunk)
    analyzer.Push(std::span(sound).subspan(i, std::min(chunk, sound.size() - i)));
  analyzer.Flush();
  return kept;
}

template <typename Wave>
std::vector<float> Stereo(std::size_t frames, Wave wave) {
  std::vector<float> sound;
  for (std::size_t i = 0; i < frames; ++i)
    for (int channel = 0; channel < 2; ++channel)
      sound.push_back(static_cast<float>(wave(i, channel)));
  return sound;
}

std::uint8_t Highest(const RenderVisualData& record, int channel = 0) {
  return *std::ranges::max_element(record.spectrum[channel]);
}

// From the middle of one bin to just short of the next one's: places between FFT points too.
TEST(Analyzer, ASineStandsInItsBinAtItsLevel) {
  for (const double bin : {1.0, 2.4, 5.56, 11.61, 40.25, 101.125, 180.3, 203.44, 251.7, 255.0}) {
    const auto kept = Analyze(Stereo(10 * kFramesPerRecord, [=](std::size_t i, int channel) {
      const double sine = std::sin(2 * std::numbers::pi * bin * static_cast<double>(i) / 512);
      return channel == 0 ? sine : 0.1 * sine;
    }));
    for (std::size_t k = 1; k + 1 < kept.size(); ++k) {
      const RenderVisualData& record = kept[k].record;
      for (int channel = 0; channel < 2; ++channel) {
        const auto* peak = std::ranges::max_element(record.spectrum[channel]);
        EXPECT_EQ(peak - record.spectrum[channel], std::lround(bin)) << bin << " " << channel;
      }
      EXPECT_EQ(Highest(record, 0), 255) << bin;
      EXPECT_NEAR(Highest(record, 1), 255 * 0.75 * 0.75, 1) << bin; // -20 dB of a range of 80
      EXPECT_TRUE(std::all_of(record.spectrum[0] + 256, record.spectrum[0] + 512,
                              [](std::uint8_t magnitude) { return magnitude == 0; }));
    }
  }
}

TEST(Analyzer, AClickAnywhereIsSeenInItsRecord) {
  constexpr std::size_t kClick = kAnalysisRate / 200;
  for (std::size_t at = 0; at <= 3 * kFramesPerRecord; at += 49) {
    const auto kept = Analyze(Stereo(4 * kFramesPerRecord, [=](std::size_t i, int) {
      return i >= at && i < at + kClick ? (i % 16 < 8 ? 0.5 : -0.5) : 0.0;
    }));
    const std::size_t home = (at + kClick / 2) / kFramesPerRecord;
    for (std::size_t k = 0; k < kept.size(); ++k) {
      const int highest = Highest(kept[k].record);
      const bool far = k + 1 < home || k > home + 1;
      EXPECT_TRUE(k == home ? highest > 100 : !far || highest == 0) << at << " " << k;
    }
  }
}

TEST(Analyzer, TheWaveformFollowsTheSound) {
  const auto wave = [](double frame, int channel) {
    return channel == 0 ? std::sin(frame / 60) : frame / (2 * kFramesPerRecord) * 2 - 1;
  };
  const auto kept = Analyze(Stereo(2 * kFramesPerRecord, [&](std::size_t i, int channel) {
    return wave(static_cast<double>(i), channel);
  }));
  ASSERT_EQ(kept.size(), 2U);
  for (std::size_t k = 0; k < 2; ++k)
    for (int channel = 0; channel < 2; ++channel)
      for (int i = 0; i < kSamplesPerChannel; ++i) {
        const double frame =
            (static_cast<double>(k) + (i + 0.5) / kSamplesPerChannel) * kFramesPerRecord - 0.5;
        EXPECT_NEAR(kept[k].record.waveform[channel][i],
                    std::min(255.0, 128 + 128 * wave(frame, channel)), 2.1)
            << k << " " << channel << " " << i;
      }
}

TEST(Analyzer, EveryLengthYieldsItsRecordsAndItsSound) {
  for (const std::size_t frames : {0U, 1U, 655U, 656U, 657U, 658U, 2204U, 2205U, 2206U, 2861U,
                                   2862U, 2863U, 4410U, 4411U, 5067U, 44100U}) {
    const auto sound = Stereo(frames, [](std::size_t i, int channel) {
      return static_cast<double>(i % 1000) / 1000 - channel;
    });
    std::vector<float> heard;
    const auto kept = Analyze(sound, 2 * 441);
    for (const Kept& one : kept)
      heard.insert(heard.end(), one.sound.begin(), one.sound.end());
    EXPECT_EQ(kept.size(), (frames + kFramesPerRecord - 1) / kFramesPerRecord) << frames;
    EXPECT_EQ(heard, sound) << frames;
  }
}

TEST(Analyzer, SilenceIsNothingAndIllValuesDoNoHarm) {
  constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  struct Case {
    float value;
    bool silent;
  };
  for (const auto& [value, silent] :
       {Case{0, true}, Case{1e-30F, true}, Case{1.0F / 65536, true}, Case{kNaN, true},
        Case{kInfinity, false}, Case{-kInfinity, false}, Case{3e38F, false}}) {
    // The ill values, then silence: nothing of them stays.
    const auto kept = Analyze(Stereo(6 * kFramesPerRecord, [v = value](std::size_t i, int) {
      return i < 3 * kFramesPerRecord ? (i % 64 < 32 ? v : -v) : 0.0F;
    }));
    EXPECT_EQ(Highest(kept[1].record) == 0, silent) << value;
    EXPECT_EQ(kept[1].record.waveform[0][100] == 128, silent) << value;
    EXPECT_EQ(Highest(kept[5].record), 0) << value;
    EXPECT_EQ(kept[5].record.waveform[0][100], 128) << value;
  }
}

// Noise falling by 6 dB an octave at -14 dB is close to the long-time spectrum of mastered music.
TEST(Analyzer, MusicFillsTheRangeWithoutSaturatingIt) {
  std::uint32_t random = 1;
  double brown = 0;
  const auto kept = Analyze(Stereo(20 * kFramesPerRecord, [&](std::size_t, int) {
    random = random * 1664525U + 1013904223U;
    brown = 0.985 * brown + 0.06 * (static_cast<double>(random) / 4294967296.0 - 0.5);
    return brown * 2;
  }));
  double sum = 0;
  for (const Kept& one : kept) {
    for (int bin = 0; bin < 256; ++bin)
      sum += one.record.spectrum[0][bin];
    EXPECT_LT(Highest(one.record), 250);
  }
  const double mean = sum / 256 / static_cast<double>(kept.size());
  EXPECT_GT(mean, 15);
  EXPECT_LT(mean, 60);
}

TEST(Analyzer, AMeterShowsDecibelsInEvenSteps) {
  struct Case {
    float peak, level;
  };
  for (const auto& [peak, level] : {Case{1, 1}, Case{0.1F, 2.0F / 3}, Case{0.00316228F, 1.0F / 6},
                                    Case{0.001F, 0}, Case{0.0001F, 0}, Case{0, 0}, Case{-1, 0},
                                    Case{7, 1}, Case{std::numeric_limits<float>::quiet_NaN(), 0}})
    EXPECT_NEAR(MeterLevel(peak), level, 1e-4F) << peak;

  RenderVisualData record = SilentRecord();
  EXPECT_EQ(MeterLevel(record), 0);
  record.waveform[1][7] = 192;
  EXPECT_EQ(MeterLevel(record), MeterLevel(0.5F));
  record.waveform[0][9] = 0;
  EXPECT_EQ(MeterLevel(record), 1);
}

} // namespace
} // namespace halvenor
