// The autopilot's numbers belong to the process, so the cases follow each other in one. They follow
// from the C library's unseeded sequence alone. The texts and sums were worked out from the rules,
// number by number, by other code than the autopilot's.
#include "renderer/random_source.h"
#include "tests/renderer/renderer_fixture.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace halvenor {
namespace {

TEST(RandomSource, IsTheLibrarysUnseededSequence) {
  // The library's own generator, which nothing in this process has touched.
  for (int i = 0; i < 1000; ++i)
    ASSERT_EQ(RandomSource::Next(), std::rand()) << i;
  EXPECT_EQ(RandomSource::Unit(), static_cast<float>(std::rand()) * 4.656612873077393e-10F);
  EXPECT_EQ(RandomSource::Chance(0.5), std::rand() < 1073741823.5);
}

class Autopilot : public RendererTest {
protected:
  /// The settings' text on one line.
  [[nodiscard]] std::string Text() const {
    std::string text;
    for (const SettingField& field : SettingFields())
      text += ToText(data_->settings, field) + " ";
    return text;
  }
  /// Takes every bit of the settings into a sum of all looks so far, whatever the byte order.
  void Add() {
    std::uint32_t words[sizeof(Settings) / 4];
    std::memcpy(words, &data_->settings, sizeof words);
    for (const std::uint32_t word : words)
      sum_ = std::rotl((sum_ ^ word) * 0x9E3779B97F4A7C15U, 23);
  }

  std::uint64_t sum_ = 0;
};

TEST_F(Autopilot, RandomLooksDrawInOrder) {
  for (int i = 0; i < 20000; ++i) {
    renderer_->RandomizeSettings(data_.get());
    if (i == 0) {
      EXPECT_EQ(
          Text(),
          "0.5142203 0.21166205 0.5016925 2.103549 19.16303 0.6933703,0.44409734,0.23635978 "
          "0.65308666,0.2191549,0.34932408 on on off off off 1 640 480 3000 0 off off 9 10000 ");
    }
    Add();
  }
  EXPECT_EQ(sum_, 7018617513365391162U);
}

TEST_F(Autopilot, StepsMoveTowardTargetsInOrder) {
  ASSERT_TRUE(Open()); // 20 frames per second: a step every frame
  data_->settings = DefaultSettings();
  data_->settings.fade = 0.05F; // near both corrections
  for (int step = 0; step < 1000000; ++step) {
    Settings& now = data_->settings;
    if (step % 1000 == 500) { // back to where corrections are frequent
      now.fade = 0.01F;
      now.zoom = step % 2000 == 500 ? 0.7F : 0.3F;
      now.zoomRotation = step % 2000 == 500 ? 350.0F : 180.0F;
      if (step % 3000 == 500) now.intensity = 0.0F;
    }
    renderer_->UpdateSettings(data_.get());
    if (step == 400) {
      EXPECT_EQ(
          Text(),
          "0.4282478 0.05 0.5412348 211.91524 47.417526 0.67548054,0.09975667,0.24743135 "
          "0.22288631,0.5627619,0.278253 off on off on on 1 640 480 3000 10 off off 9 10000 ");
    }
    Add();
    // What a viewer may meet: every range but the intensity's, which a correction may leave.
    ASSERT_TRUE(now.intensity >= 0 && now.intensity <= 1) << step;
    ASSERT_TRUE(now.fade >= 0 && now.fade <= 1) << step;
    ASSERT_TRUE(now.zoom >= 0.25F && now.zoom <= 0.75F) << step;
    ASSERT_TRUE(now.zoomRotation >= 0 && now.zoomRotation <= 360) << step;
    ASSERT_TRUE(now.numLines >= 0 && now.numLines <= 100) << step;
  }
  EXPECT_EQ(sum_, 3704119981915244541U);
}

TEST_F(Autopilot, StepsOnEveryFrameThatCompletesATwentiethOfASecond) {
  ASSERT_TRUE(Open());
  data_->settings.autopilot = 1;
  data_->settings.numLines = 0;
  stand_ins::SetSilent(true);
  std::uint64_t now = UpTime();
  for (const auto& [fps, framesAStep] : {std::pair<std::uint64_t, int>{10, 1},
                                         {20, 1},
                                         {24, 2},
                                         {25, 2},
                                         {30, 2},
                                         {40, 2},
                                         {48, 3},
                                         {50, 3},
                                         {60, 3},
                                         {72, 4},
                                         {75, 4},
                                         {90, 5},
                                         {100, 5},
                                         {120, 6},
                                         {144, 8}}) {
    const std::uint64_t start = now;
    int sinceStep = 0;
    for (std::uint64_t frame = 1; frame <= 600; ++frame) { // of an offline host, in nanoseconds
      const std::uint64_t time = start + frame * 1000000000 / fps;
      Advance(time - std::exchange(now, time));
      data_->settings.zoom = 50.0F; // away from its target: it moves back at every step
      renderer_->Render(data_.get());
      ++sinceStep;
      if (data_->settings.zoom == 50.0F) continue;
      // The rate settles first.
      ASSERT_TRUE(frame <= 400 || sinceStep == framesAStep)
          << fps << " frames per second, frame " << frame << ", after " << sinceStep;
      sinceStep = 0;
    }
  }
}

} // namespace
} // namespace halvenor
