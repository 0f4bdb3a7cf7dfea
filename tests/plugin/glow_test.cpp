// The glow as pixels: by the ARB programs, or, in a process whose driver hides them, by copies.
#include "tests/plugin/offscreen_plugin.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace halvenor {
namespace {

constexpr int kSide = 512; // a pixel of the window is one of the buffers

bool HasPrograms() {
  return std::getenv("MESA_EXTENSION_OVERRIDE") == nullptr;
}

using Line = std::vector<std::array<int, 3>>;

// A plain field across the middle of the picture, cut across its edges.
Line FieldProfile(bool glow, bool vertical) {
  Settings settings = FieldLook({1.0F, 0.5F, 0.2F});
  settings.intensity = 3.0F;
  settings.glow = glow ? 1 : 0;
  settings.verticalLayout = vertical ? 1 : 0;
  OffscreenPlugin plugin(settings, kSide, kSide, OffscreenPlugin::Log::MayComplain);
  plugin.DeliverFlat(100, 100, 300);
  plugin.Step(2);
  Line line;
  for (int i = 0; i < kSide; ++i) {
    const int place = vertical ? kSide / 2 * kSide + i : i * kSide + kSide / 2;
    const std::uint8_t* pixel = &plugin.Pixels()[static_cast<std::size_t>(4 * place)];
    line.push_back({pixel[0], pixel[1], pixel[2]});
  }
  return line;
}

// What the picture becomes where all around is like it.
double WithGlow(double shown) {
  if (!HasPrograms()) return shown + std::min(2.5 * shown, 1.0) / 2;
  const double glow = shown * (0.3 + 0.7 * shown);
  return shown + 0.7 * glow * (1 - shown) + glow;
}

class Glow : public testing::TestWithParam<bool> {};

TEST_P(Glow, OfAPlainFieldIsPlainAndFadesOutEvenlyAround) {
  const Line plain = FieldProfile(false, GetParam());
  const Line glowing = FieldProfile(true, GetParam());
  const auto isLit = [](const std::array<int, 3>& pixel) { return pixel[0] > 0; };
  const auto edge = std::find_if(plain.begin(), plain.end(), isLit) - plain.begin();
  ASSERT_GT(edge, 60);
  const std::size_t inside = static_cast<std::size_t>(edge) + 30; // beyond the reach of the edge
  for (std::size_t c = 0; c < 3; ++c) {
    SCOPED_TRACE(c);
    ASSERT_GT(plain[inside][c], 10);
    // A step of the four passes, in the blur and through it, and the rounding of both pictures.
    for (std::size_t i = inside; i < kSide - inside; ++i)
      ASSERT_NEAR(glowing[i][c], 255 * WithGlow(plain[inside][c] / 255.0), 3) << i;
    // Around it the glow begins, never swells again, and ends in exact black.
    EXPECT_GT(glowing[static_cast<std::size_t>(edge) - 2][c], 0);
    for (std::size_t i = 1; i <= static_cast<std::size_t>(edge); ++i)
      ASSERT_GE(glowing[i][c], glowing[i - 1][c]) << i;
    EXPECT_EQ(glowing[static_cast<std::size_t>(edge) - 40][c], 0);
    for (std::size_t i = 0; i < kSide / 2; ++i)
      ASSERT_NEAR(glowing[i][c], glowing[kSide - 1 - i][c], 2) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Directions, Glow, testing::Bool());

} // namespace
} // namespace halvenor
