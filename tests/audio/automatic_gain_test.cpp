#include "audio/analyzer.h"
#include "audio/automatic_gain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace halvenor {
namespace {

/// Plays noise like mastered music (falling by 6 dB an octave) at any level through the gain.
class Gained {
public:
  void Play(double seconds, double decibels) {
    std::array<float, 882> piece{};
    for (int i = 0; i < static_cast<int>(seconds * 100); ++i) {
      for (float& value : piece)
        value = Noise() * static_cast<float>(std::pow(10, decibels / 20));
      gain.Apply(piece);
      for (const float value : piece)
        highest = std::max(highest, std::fabs(value));
      analyzer.Push(piece);
    }
  }

  AutomaticGain gain;
  double mean = 0; // of the last record's bins
  float highest = 0;

private:
  float Noise() {
    random_ = random_ * 1664525U + 1013904223U;
    brown_ = 0.985 * brown_ + 0.06 * (static_cast<double>(random_) / 4294967296.0 - 0.5);
    return static_cast<float>(brown_ * 2);
  }
  std::uint32_t random_ = 1;
  double brown_ = 0;
  Analyzer analyzer{[this](const AnalyzedSound& analyzed) {
                      gain.Observe(analyzed.record);
                      const auto* bins = analyzed.record.spectrum[0];
                      mean = std::accumulate(bins, bins + 256, 0.0) / 256;
                    },
                    AnalysisWindows::Past};
};

TEST(AutomaticGain, QuietMusicIsLiftedSlowlyAndLoudMusicAtOnceLeftAlone) {
  Gained sound;
  sound.Play(5, 0);
  EXPECT_LT(sound.gain.Decibels(), 3) << "mastered music is as it should be";
  sound.gain.Reset();
  sound.Play(1, -30);
  EXPECT_LT(sound.gain.Decibels(), 7);
  sound.Play(9, -30);
  EXPECT_GT(sound.gain.Decibels(), 15);
  EXPECT_GT(sound.mean, 15);
  EXPECT_LT(sound.mean, 60);
  sound.Play(0.25, 0);
  EXPECT_LE(sound.highest, 1) << "nothing is driven beyond full scale";
  sound.Play(0.75, 0);
  EXPECT_LT(sound.mean, 60);
}

TEST(AutomaticGain, NoiseAndSilenceAreNotLifted) {
  struct Case {
    double decibels;
    bool keeps;
  };
  for (const auto& [decibels, keeps] : {Case{-75, false}, Case{-1000, true}}) {
    Gained sound;
    sound.Play(8, -30);
    const float before = sound.gain.Decibels();
    sound.highest = 0;
    sound.Play(4, decibels);
    EXPECT_EQ(sound.gain.Decibels(), keeps ? before : 0) << decibels;
    EXPECT_EQ(sound.highest == 0, keeps) << decibels;
    Gained first;
    first.Play(4, decibels);
    EXPECT_EQ(first.gain.Decibels(), 0) << decibels;
  }
}

TEST(AutomaticGain, SoundThatIsHeardAlreadyIsNotWaitedFor) {
  int records = 0;
  Analyzer analyzer(
      [&](const AnalyzedSound& analyzed) {
        ++records;
        EXPECT_GT(*std::ranges::max_element(analyzed.record.spectrum[0]), 50)
            << "a click at its end";
      },
      AnalysisWindows::Past);
  std::vector<float> sound(2 * kFramesPerRecord);
  for (std::size_t i = sound.size() - 600; i < sound.size(); ++i)
    sound[i] = i % 32 < 16 ? 0.5F : -0.5F;
  analyzer.Push(sound);
  EXPECT_EQ(records, 1);
}

} // namespace
} // namespace halvenor
