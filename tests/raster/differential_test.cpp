// Random sequences of the plug-in's calls, carried out by Mesa and by raster/: the same errors at
// the same calls, and the same pictures within what is said below.
#include "tests/raster/call_sequence.h"
#include "tests/raster/mesa.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace halvenor {
namespace {

#define HALVENOR_ROW(name, kinds) ::name,
constexpr gl_calls::Table kLibrary = {HALVENOR_GL_FUNCTIONS(HALVENOR_ROW)};
#undef HALVENOR_ROW

// Draws into 16 bits a channel, so that what Mesa rounds after each call does not count.
class MesaPlayer : public GlPlayer {
public:
  MesaPlayer() {
    for (std::size_t i = 0; i < pictures_.size(); ++i)
      pictures_[i] = MakeFramebuffer(GL_RGBA16, kPictureSizes[i].width, kPictureSizes[i].height);
    trailsTexture = pictures_[kTrails].texture;
  }
  const gl_calls::Table& Gl() override { return kLibrary; }
  void Bind(int picture) override {
    glBindFramebuffer(GL_FRAMEBUFFER, pictures_[static_cast<std::size_t>(picture)].framebuffer);
  }
  std::vector<std::uint8_t> Pixels(int picture) override {
    Bind(picture);
    return ReadPixels(kPictureSizes[picture].width, kPictureSizes[picture].height);
  }
  void DefineBitmapList(GLuint list, const raster::Bitmap& bitmap) override {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glNewList(list, GL_COMPILE);
    glBitmap(bitmap.width, bitmap.height, bitmap.xOrigin, bitmap.yOrigin, bitmap.xMove,
             bitmap.yMove, bitmap.rows);
    glEndList();
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
  }

private:
  Mesa mesa_{1, 1};
  std::array<Framebuffer, 2> pictures_;
};

class SeededChoices : public Choices {
public:
  explicit SeededChoices(unsigned seed) : random_(seed) {}
  unsigned Below(unsigned limit) override { return static_cast<unsigned>(random_()) % limit; }
  [[nodiscard]] bool AreLeft() const override { return true; }

private:
  std::mt19937 random_;
};

struct Difference {
  double mean = 0.0;      ///< of 255, over all bytes
  double offPixels = 0.0; ///< share with a channel that is off by more than 4 of 255
};

Difference Compare(const std::vector<std::uint8_t>& ours, const std::vector<std::uint8_t>& theirs) {
  EXPECT_EQ(ours.size(), theirs.size());
  Difference difference;
  const auto size = static_cast<double>(ours.size());
  for (std::size_t i = 0; i + 3 < ours.size(); i += 4) {
    int worst = 0;
    for (std::size_t k = i; k < i + 3; ++k) {
      const int off = std::abs(ours[k] - theirs[k]);
      difference.mean += off / size;
      worst = std::max(worst, off);
    }
    if (worst > 4) difference.offPixels += 4.0 / size;
  }
  return difference;
}

TEST(DifferentialTest, RandomCallsGiveTheSameErrorsAndPictures) {
  constexpr unsigned kSeeds = 30;
  constexpr int kSteps = 30;
  for (unsigned seed = 1; seed <= kSeeds; ++seed) {
    RasterPlayer ours(2);
    MesaPlayer theirs;
    GlPlayer* const players[] = {&ours, &theirs};
    SeededChoices choices(seed);
    EXPECT_EQ(PlaySequence(choices, players, kSteps, false), "") << "seed " << seed;
    for (const int picture : {kTrails, kWindow}) {
      const Difference difference = Compare(ours.Pixels(picture), theirs.Pixels(picture));
      EXPECT_LE(difference.mean, 0.5) << "seed " << seed << ", picture " << picture;
      EXPECT_LE(difference.offPixels, 0.01) << "seed " << seed << ", picture " << picture;
    }
  }
}

} // namespace
} // namespace halvenor
