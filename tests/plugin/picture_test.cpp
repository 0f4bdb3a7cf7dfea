// What a viewer sees: the real module on the software renderer.
#include "tests/plugin/offscreen_plugin.h"

#include <cmath>

namespace halvenor {
namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;

// A look in which nothing but the present lines shows, bright enough to be told from black.
Settings PlainLook() {
  Settings settings = DefaultSettings();
  settings.intensity = 1.0F;
  settings.fade = 1.0F;
  settings.glow = 0;
  settings.smoothing = 0;
  settings.showFrameRate = 0;
  settings.numFrequencyLabels = 0;
  return settings;
}

// How far from the middle the band reaches, in halves of the picture, at full amplitude.
double Reach(int magnitude) {
  return 0.7 * (0.495 + std::sqrt(0.495) * magnitude / 256.0);
}

// Lines and texels have a width: the edge lies within this many pixels.
constexpr double kEdge = 4.0;

TEST(Picture, ShowsTheLeftChannelAboveAndTheRightBelow) {
  OffscreenPlugin plugin(PlainLook(), kWidth, kHeight);
  plugin.DeliverFlat(255, 64, 300); // settles at 253 and 62; the loudness passes the cap
  plugin.Step(3);
  for (const int x : {50, 320, 600}) {
    const auto rows = plugin.LitRows(x);
    EXPECT_NEAR(rows[0], kHeight / 2.0 * (1 - Reach(253)), kEdge) << "column " << x;
    EXPECT_NEAR(rows[1], kHeight / 2.0 * (1 + Reach(62)), kEdge) << "column " << x;
  }
  EXPECT_EQ(plugin.LitPixels(0, 0, kWidth, 20), 0);
}

TEST(Picture, VerticalLayoutShowsThemLeftAndRight) {
  Settings settings = PlainLook();
  settings.verticalLayout = 1;
  OffscreenPlugin plugin(settings, kWidth, kHeight);
  plugin.DeliverFlat(255, 64, 300);
  plugin.Step(3);
  int left = 0;
  while (left < kWidth && !plugin.IsLit(left, 240))
    ++left;
  int right = kWidth - 1;
  while (right > 0 && !plugin.IsLit(right, 240))
    --right;
  EXPECT_NEAR(left, kWidth / 2.0 * (1 - Reach(253)), kEdge + 1);
  EXPECT_NEAR(right, kWidth / 2.0 * (1 + Reach(62)), kEdge + 1);
}

TEST(Picture, SilenceIsBlackButForTheTexts) {
  Settings settings = PlainLook();
  OffscreenPlugin plugin(settings, kWidth, kHeight);
  plugin.Step(2);
  EXPECT_EQ(plugin.LitPixels(0, 0, kWidth, kHeight), 0);
}

TEST(Picture, TextsStandWhereTheyBelong) {
  for (const int size : {9, 24}) {
    Settings settings = PlainLook();
    settings.showFrameRate = 1;
    settings.numFrequencyLabels = 10;
    settings.fontSize = size;
    OffscreenPlugin plugin(settings, kWidth, kHeight);
    plugin.Step(2);
    // The frame rate: from eight half sizes before the right edge, on the bottom line.
    EXPECT_GT(plugin.LitPixels(kWidth - 4 * size - 2, kHeight - 2 * size, kWidth, kHeight), size);
    // Labels: below the middle line at every tenth of the width, ticks across it.
    for (int label = 0; label < 10; ++label) {
      const int x = static_cast<int>((0.03 + 0.1 * label) * kWidth);
      EXPECT_GT(plugin.LitPixels(x, kHeight / 2 + 4, x + 3 * size, kHeight / 2 + 12 + size), size);
      EXPECT_GT(plugin.LitPixels(x - 1, kHeight / 2 - 3, x + 2, kHeight / 2 + 3), 2);
    }
    EXPECT_EQ(plugin.LitPixels(0, 0, kWidth, kHeight / 2 - 10 - size), 0);
  }
}

TEST(Picture, FollowsResizesAndComesBackAfterHiding) {
  OffscreenPlugin plugin(PlainLook(), kWidth, kHeight);
  plugin.DeliverFlat(255, 255, 300);
  for (int times = 0; times < 3; ++times) {
    plugin.Step(2);
    EXPECT_TRUE(plugin.IsLit(kWidth / 2, kHeight / 2 - 30));
    plugin.ShowAgain();
  }
  plugin.SetRect({100, 50, 300, 450});
  plugin.Step(2);
  EXPECT_TRUE(plugin.IsLit(250, 190));
  EXPECT_EQ(plugin.LitPixels(0, 0, kWidth, 100), 0);
  EXPECT_EQ(plugin.LitPixels(0, 300, kWidth, kHeight), 0);
  EXPECT_EQ(plugin.LitPixels(0, 0, 50, kHeight), 0);
  EXPECT_EQ(plugin.LitPixels(450, 0, kWidth, kHeight), 0);
}

} // namespace
} // namespace halvenor
