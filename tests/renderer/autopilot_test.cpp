// The autopilot's numbers belong to the process, so the cases follow each other in one.
#include "renderer/random_source.h"
#include "tests/renderer/renderer_fixture.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace halvenor {
namespace {

constexpr float kScale = 4.656612873077393e-10F;

TEST(RandomSource, IsTheLibrarysUnseededSequence) {
  // The library's own generator, which nothing in this process has touched.
  for (int i = 0; i < 1000; ++i)
    ASSERT_EQ(RandomSource::Next(), std::rand()) << i;
  EXPECT_EQ(RandomSource::Unit(), static_cast<float>(std::rand()) * kScale);
  EXPECT_EQ(RandomSource::Chance(0.5), std::rand() < 1073741823.5);
}

class Autopilot : public RendererTest {
protected:
  // What the next draws will be: the library's generator runs in step with the plug-in's.
  static float Unit() { return static_cast<float>(std::rand()) * kScale; }
  static bool Chance(double threshold) { return std::rand() < threshold; }
  static float Intensity() {
    const float v = Unit();
    return std::fmin(std::fmax(v * v, 0.2F), 0.8F);
  }
  static float Square() {
    const float v = Unit();
    return v * v;
  }
  static float Zoom() {
    const float t = Unit() - 0.5F;
    return t > 0 ? 0.5F + t * t : 0.5F - t * t;
  }
  static float Angle() { return static_cast<float>(std::rand() * 360.0 / 2147483648.0); }
  static float Lines() {
    const float v = Unit() * 100.0F;
    return v > 7.0F ? Unit() * 100.0F : v;
  }
  static bool Steep(const Settings& s) {
    return (s.zoom > 0.5F && (s.zoomRotation < 20 || s.zoomRotation > 340)) ||
           (s.zoom < 0.5F && s.zoomRotation > 160 && s.zoomRotation < 200);
  }
  static bool Dark(const Settings& s) {
    const auto length = [](const Color& c) {
      return std::sqrt(c.red * c.red + c.green * c.green + c.blue * c.blue);
    };
    const float keep = 1 - s.fade;
    return (length(s.innerColor) + length(s.outerColor)) * s.intensity * (keep * keep) < 0.12F;
  }
  static void Correct(const Settings& now, float* intensity, float* fade, float* zoom, float* angle,
                      float* const (&colors)[6]) {
    if (now.fade < 0.1F && Steep(now)) {
      if (Chance(21474836.47)) *fade = Square();
      if (Chance(21474836.47)) *angle = Angle();
      if (Chance(21474836.47)) *zoom = Zoom();
    }
    if (!Dark(now)) return;
    for (float* color : colors)
      if (Chance(21474836.47)) *color = Unit();
    if (Chance(107374182.35)) *intensity = Unit();
    if (Chance(107374182.35)) *fade = Square();
  }
  static void Colors(Settings& s, float* (&colors)[6]) {
    float* all[] = {&s.innerColor.red, &s.innerColor.green, &s.innerColor.blue,
                    &s.outerColor.red, &s.outerColor.green, &s.outerColor.blue};
    std::copy(std::begin(all), std::end(all), colors);
  }
  static bool Same(const Settings& a, const Settings& b) {
    for (const SettingField& field : SettingFields())
      EXPECT_EQ(ToText(a, field), ToText(b, field)) << field.name;
    return std::memcmp(&a, &b, sizeof a) == 0;
  }
};

TEST_F(Autopilot, RandomLooksDrawInOrder) {
  int faintest = 0, strongest = 0, fewLines = 0, inward = 0, slowest = 0;
  for (int i = 0; i < 20000; ++i) {
    Settings expected = data_->settings;
    expected.intensity = Intensity();
    expected.fade = Square();
    expected.zoom = Zoom();
    expected.zoomRotation = Angle();
    expected.numLines = Lines();
    float* colors[6];
    Colors(expected, colors);
    for (float* color : colors)
      *color = Unit();
    for (std::int32_t* flag : {&expected.smoothing, &expected.sharpOverlay, &expected.colorCycle})
      *flag = std::rand() > 1073741823.5 ? 1 : 0;
    Correct(expected, &expected.intensity, &expected.fade, &expected.zoom, &expected.zoomRotation,
            colors);
    renderer_->RandomizeSettings(data_.get());
    ASSERT_TRUE(Same(data_->settings, expected)) << "look " << i;
    const Settings& now = data_->settings;
    faintest += now.intensity == 0.2F;
    strongest += now.intensity == 0.8F;
    fewLines += now.numLines <= 7.0F;
    inward += now.zoom < 0.5F;
    slowest += std::fabs(now.zoom - 0.5F) < 0.0625F;
  }
  // What the generators imply, within four standard deviations of such a count.
  const auto expectShare = [](int count, double share) {
    EXPECT_NEAR(count / 20000.0, share, 4 * std::sqrt(share * (1 - share) / 20000));
  };
  expectShare(faintest, std::sqrt(0.2)); // a square below 0.2
  expectShare(strongest, 1 - std::sqrt(0.8));
  expectShare(fewLines, 0.07 + 0.93 * 0.07); // at once, or at the second draw
  expectShare(inward, 0.5);
  expectShare(slowest, 0.5); // the square of a quarter at most
}

TEST_F(Autopilot, StepsMoveTowardTargetsInOrder) {
  ASSERT_TRUE(Open()); // 20 frames per second: a step every frame
  data_->settings = DefaultSettings();
  data_->settings.fade = 0.05F; // near both corrections
  Settings expected = data_->settings;
  Settings targets = expected; // at the first step ever, the values
  float* colors[6];
  Colors(expected, colors);
  float* goals[6];
  Colors(targets, goals);
  const auto drift = [](float& value, float target) {
    value = static_cast<float>(value * 0.99 + target * 0.01);
  };
  for (int step = 0; step < 1000000; ++step) {
    if (step % 1000 == 500) { // back to where corrections are frequent
      expected.fade = 0.01F;
      expected.zoom = step % 2000 == 500 ? 0.7F : 0.3F;
      expected.zoomRotation = step % 2000 == 500 ? 350.0F : 180.0F;
      if (step % 3000 == 500) expected.intensity = 0.0F;
      data_->settings = expected;
    }
    constexpr double kNewTarget = 10737418.235;
    if (Chance(kNewTarget)) targets.intensity = Intensity();
    drift(expected.intensity, targets.intensity);
    if (Chance(kNewTarget)) targets.fade = Square();
    drift(expected.fade, targets.fade);
    if (Chance(kNewTarget)) targets.zoom = Zoom();
    drift(expected.zoom, targets.zoom);
    if (Chance(kNewTarget)) targets.zoomRotation = Angle();
    double goal = targets.zoomRotation;
    if (std::fabs(goal - expected.zoomRotation) >= 180) goal += goal > 180 ? -360 : 360;
    double angle = expected.zoomRotation * 0.98 + goal * 0.02;
    angle = angle < 0 ? angle + 360 : angle > 360 ? angle - 360 : angle;
    expected.zoomRotation = static_cast<float>(angle);
    if (Chance(kNewTarget)) targets.numLines = Lines();
    drift(expected.numLines, targets.numLines);
    for (int i = 0; i < 6; ++i) {
      if (Chance(kNewTarget)) *goals[i] = Unit();
      drift(*colors[i], *goals[i]);
    }
    if (Chance(2147483.647)) expected.smoothing ^= 1;
    if (Chance(2147483.647)) expected.sharpOverlay ^= 1;
    Correct(expected, &targets.intensity, &targets.fade, &targets.zoom, &targets.zoomRotation,
            goals);
    renderer_->UpdateSettings(data_.get());
    ASSERT_EQ(std::memcmp(&data_->settings, &expected, sizeof expected), 0) << "step " << step;
    // What a viewer may meet: every range but the intensity's, which a correction may leave.
    const Settings& now = data_->settings;
    ASSERT_TRUE(now.intensity >= 0 && now.intensity <= 1) << step;
    ASSERT_TRUE(now.fade >= 0 && now.fade <= 1) << step;
    ASSERT_TRUE(now.zoom >= 0.25F && now.zoom <= 0.75F) << step;
    ASSERT_TRUE(now.zoomRotation >= 0 && now.zoomRotation <= 360) << step;
    ASSERT_TRUE(now.numLines >= 0 && now.numLines <= 100) << step;
  }
}

TEST_F(Autopilot, StepsAreTimedByTheFrameRate) {
  ASSERT_TRUE(Open());
  data_->settings.autopilot = 1;
  data_->settings.numLines = 0;
  stand_ins::SetSilent(true);
  for (const auto& [fps, steps] :
       {std::pair{10, 10}, {20, 20}, {30, 15}, {40, 20}, {60, 20}, {144, 18}}) {
    // Intervals come in whole microseconds; rounded up, the rate is not above what it is called.
    const std::uint64_t interval = static_cast<std::uint64_t>(1000000 / fps + 1) * 1000;
    for (int frame = 0; frame < 400; ++frame) { // the rate settles
      Advance(interval);
      renderer_->Render(data_.get());
    }
    // A value that is forced away from its target moves back at every step.
    int moved = 0;
    for (int frame = 0; frame < 10 * fps; ++frame) {
      data_->settings.zoom = 50.0F;
      Advance(interval);
      renderer_->Render(data_.get());
      moved += data_->settings.zoom != 50.0F ? 1 : 0;
    }
    EXPECT_NEAR(moved, 10 * steps, 10) << fps << " frames per second";
  }
}

} // namespace
} // namespace halvenor
