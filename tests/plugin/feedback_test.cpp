// What becomes of a frame in the frames after it: the real module on the software renderer.
#include "tests/plugin/offscreen_plugin.h"

#include <algorithm>

namespace halvenor {
namespace {

constexpr int kSide = 128;

// Nothing but the lines and their trails.
Settings TrailLook() {
  Settings settings = DefaultSettings();
  settings.intensity = 1.0F;
  settings.glow = 0;
  settings.showFrameRate = 0;
  settings.numFrequencyLabels = 0;
  return settings;
}

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
    Settings settings = TrailLook();
    settings.fade = c.fade;
    settings.zoom = c.zoom;
    settings.smoothing = 1;
    OffscreenPlugin plugin(settings, kSide, kSide);
    plugin.DeliverFlat(255, 255, 100);
    plugin.Step(20);
    EXPECT_GT(BrightestComponent(plugin), 60);
    plugin.DeliverFlat(0, 0, 12000); // ten minutes: the lines themselves go out slowly
    plugin.Step(c.frames);
    EXPECT_EQ(BrightestComponent(plugin), 0);
  }
}

// With nothing faded, what was drawn once drifts outward with the zoom alone.
double EdgeAfterHalfASecond(int framesPerSecond) {
  Settings settings = TrailLook();
  settings.fade = 0.0F;
  settings.zoom = 0.8F;
  settings.zoomRotation = 0.0F;
  settings.smoothing = 0;
  OffscreenPlugin plugin(settings, 512, 512);
  plugin.DeliverFlat(100, 100, 1);
  plugin.Step(5, 1000); // a band that is saturated at its place, hardly moved
  plugin.DeliverFlat(0, 0, 12000);
  plugin.Step(framesPerSecond / 2, framesPerSecond);
  return 256.0 - plugin.LitRows(256)[0];
}

TEST(Feedback, FlowsAsFarInASecondAtAnyFrameRate) {
  std::printf("edges %f %f %f\n", EdgeAfterHalfASecond(30), EdgeAfterHalfASecond(60), EdgeAfterHalfASecond(144));
}

} // namespace
} // namespace halvenor
