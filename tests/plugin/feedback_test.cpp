// What becomes of a frame in the frames after it: the real module on the software renderer.
#include "tests/plugin/offscreen_plugin.h"

#include <algorithm>

namespace halvenor {
namespace {

constexpr int kFeedbackSide = 128;

int BrightestComponent(const OffscreenPlugin& plugin) {
  int brightest = 0;
  const std::vector<std::uint8_t>& pixels = plugin.Pixels();
  for (std::size_t i = 0; i < pixels.size(); ++i)
    if (i % 4 != 3) brightest = std::max<int>(brightest, pixels[i]);
  return brightest;
}

TEST(Feedback, TrailsDieToExactBlack) {
  // Smoothing draws two to eight faint copies here, each rounded for itself.
  const struct {
    float fade, zoom;
    int frames;
  } cases[] = {
      {0.2F, 0.3F, 40}, {0.2F, 0.5F, 40}, {0.2F, 0.9F, 40}, {0.9F, 0.5F, 4}, {0.02F, 0.9F, 200}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "fade " << c.fade << ", zoom " << c.zoom);
    Settings settings = PlainLook();
    settings.fade = c.fade;
    settings.zoom = c.zoom;
    settings.smoothing = 1;
    OffscreenPlugin plugin(settings, kFeedbackSide, kFeedbackSide);
    plugin.DeliverFlat(255, 255, 100);
    plugin.Step(20);
    EXPECT_GT(BrightestComponent(plugin), 60);
    plugin.DeliverFlat(0, 0, 12000); // ten minutes: the lines themselves go out slowly
    plugin.Step(c.frames);
    EXPECT_EQ(BrightestComponent(plugin), 0);
  }
}

// With nothing faded, a field that was drawn once grows with the zoom alone. In pixels.
double ReachAfterASecond(int framesPerSecond) {
  constexpr int kBufferSide = 512;
  Settings settings = FieldLook({1.0F, 1.0F, 1.0F});
  settings.fade = 0.0F;
  settings.zoom = 0.6F;
  settings.zoomRotation = 0.0F;
  settings.intensity = 50.0F; // white at once
  OffscreenPlugin plugin(settings, kBufferSide, kBufferSide);
  plugin.DeliverFlat(100, 100, 5);
  plugin.Step(1, 1000);
  plugin.DeliverFlat(0, 0, 12000);
  plugin.Step(framesPerSecond, framesPerSecond);
  int row = kBufferSide / 2;
  while (row > 0 &&
         plugin.Pixels()[static_cast<std::size_t>(4 * (row * kBufferSide + kBufferSide / 2))] > 127)
    --row;
  return kBufferSide / 2 - row;
}

TEST(Feedback, FlowsAsFarInASecondAtAnyFrameRate) {
  // A twentieth in every twentieth of a second, compounded frame by frame: 2.67 times in a second
  // of 30 frames, 2.70 of 60, 2.71 of 144. An edge lies within a pixel.
  const double reach = ReachAfterASecond(60);
  ASSERT_GT(reach, 100);
  EXPECT_LT(reach, 250);
  EXPECT_NEAR(ReachAfterASecond(30) / reach, 2.67 / 2.70, 0.01);
  EXPECT_NEAR(ReachAfterASecond(144) / reach, 2.71 / 2.70, 0.01);
}

} // namespace
} // namespace halvenor
