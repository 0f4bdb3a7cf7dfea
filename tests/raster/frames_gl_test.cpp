// Frames beside those of Mesa, whose trails have 10 bits a color and whose window has 8.
#include "tests/raster/cpu_frames.h"
#include "tests/raster/mesa.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace halvenor {
namespace {

constexpr int kWidth = 400;
constexpr int kHeight = 300;
constexpr int kFrames = 12;

#define HALVENOR_DRIVER_ROW(name, kinds) &::name,
constexpr gl_calls::Table kDriver = {HALVENOR_GL_FUNCTIONS(HALVENOR_DRIVER_ROW)};
#undef HALVENOR_DRIVER_ROW

/// The trails and the glow as frame buffers of Mesa; the window is the one bound at the start.
class MesaFrames {
public:
  MesaFrames() {
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &window_);
    for (std::size_t i = 0; i < buffers_.size(); ++i) {
      const Framebuffer made = MakeFramebuffer(GL_RGB10_A2, kTrailSize, kTrailSize);
      api_.textures[i] = made.texture;
      buffers_[i] = made.framebuffer;
    }
    PrepareFrames(api_);
  }
  void Draw(const FrameLook& look, int number) { DrawFrame(api_, look, number, kWidth, kHeight); }

  /// The window's; RGBA, bottom row first.
  std::vector<std::uint8_t> Pixels() const {
    Bind(kNumPictures - 1);
    return ReadPixels(kWidth, kHeight);
  }

private:
  void Bind(int picture) const {
    const auto number = static_cast<std::size_t>(picture);
    const bool isWindow = number >= buffers_.size();
    glBindFramebuffer(GL_FRAMEBUFFER, isWindow ? static_cast<GLuint>(window_) : buffers_[number]);
  }

  GLint window_ = 0;
  std::array<GLuint, 4> buffers_{};
  FrameApi api_{kDriver, [this](int picture) { Bind(picture); }};
};

struct Difference {
  double mean = 0.0;
  int worst = 0;
  double visible = 0.0; ///< percent of components that are off by more than 2
};

Difference Compare(const std::vector<std::uint8_t>& one, const std::vector<std::uint8_t>& other) {
  Difference difference;
  const double share = 1.0 / (static_cast<double>(one.size()) * 0.75);
  for (std::size_t i = 0; i < one.size(); ++i) {
    if (i % 4 == 3) continue;
    const int off = std::abs(one[i] - other[i]);
    difference.mean += off * share;
    difference.worst = std::max(difference.worst, off);
    if (off > 2) difference.visible += 100.0 * share;
  }
  return difference;
}

struct Case {
  const char* name;
  FrameLook look;
};

const Case kCases[] = {
    {"usual", {}},
    {"lines alone", {0.1F, 0, 1, 30, false, false, true}},
    {"upright", {0.05F, 0.05F, 2, 5, true, true, true}},
    {"inward, in four copies", {0.1F, -0.06F, 4, 6, true, false, false}},
    {"still", {0.3F, 0, 1, 8, true, false, true}},
};

// Mesa cuts what it adds to trails to ten bits, copy by copy, where ours are smooth. A pixel of a
// line may go to its neighbor where the line passes between the two.
constexpr Difference kLimit = {0.45, 60, 1.5};

TEST(FramesBesideMesa, AreNear) {
  for (const Case& test : kCases) {
    SCOPED_TRACE(test.name);
    const Mesa mesa(kWidth, kHeight);
    MesaFrames theirs;
    CpuFrames ours(kWidth, kHeight, 2);
    std::vector<std::uint8_t> picture;
    for (int number = 0; number < kFrames; ++number) {
      theirs.Draw(test.look, number);
      ours.Draw(test.look, number);
      picture = ours.Finish();
    }
    const Difference difference = Compare(picture, theirs.Pixels());
    EXPECT_LE(difference.mean, kLimit.mean);
    EXPECT_LE(difference.worst, kLimit.worst);
    EXPECT_LE(difference.visible, kLimit.visible);
    EXPECT_GT(*std::max_element(picture.begin(), picture.end()), 100);
  }
}

} // namespace
} // namespace halvenor
