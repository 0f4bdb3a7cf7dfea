#include "raster/mipmaps.h"
#include "tests/raster/mesa.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>

namespace halvenor::raster {
namespace {

// Pixels in a block of exactly their size, so that a sanitizer sees a byte read too many.
std::unique_ptr<std::uint8_t[]> Noise(std::size_t size) {
  std::mt19937 random(static_cast<unsigned>(size));
  auto pixels = std::make_unique<std::uint8_t[]>(size);
  for (std::size_t i = 0; i < size; ++i)
    pixels[i] = static_cast<std::uint8_t>(random());
  return pixels;
}

std::vector<std::uint8_t> LevelInMesa(int level, int& width, int& height) {
  glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH, &width);
  glGetTexLevelParameteriv(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT, &height);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width * height * 3));
  glGetTexImage(GL_TEXTURE_2D, level, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
  return pixels;
}

// The largest difference of the colors, whatever the channels of ours.
int Difference(const MipmapLevel& ours, const std::vector<std::uint8_t>& theirs, int channels) {
  int worst = 0;
  for (std::size_t i = 0; i < theirs.size(); ++i) {
    const std::size_t at = i / 3 * static_cast<std::size_t>(channels) + i % 3;
    worst = std::max(worst, std::abs(ours.pixels.at(at) - theirs[i]));
  }
  return worst;
}

TEST(MipmapsTest, AreThoseOfGlu) {
  const Mesa mesa(1, 1);
  GLint maxSize = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxSize);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  // Not among them: sizes of which GLU loses the last row (a height that is a multiple of its power
  // of two beside a width that is none), and rows of 3 or 6 bytes that it does not align.
  const struct {
    int width, height, alignment;
  } cases[] = {{512, 384, 1}, {1, 1, 1},  {1, 7, 1},   {2, 2, 1},   {64, 16, 1},
               {6, 11, 8},    {8, 13, 4}, {300, 5, 4}, {23, 91, 2}, {33, 47, 1}};
  for (const auto& [width, height, alignment] : cases) {
    for (const int channels : {3, 4}) {
      SCOPED_TRACE(testing::Message() << width << "x" << height << "x" << channels);
      const int stride = (width * channels + alignment - 1) / alignment * alignment;
      const auto pixels = Noise(static_cast<std::size_t>(stride * (height - 1) + width * channels));
      const GLenum format = channels == 3 ? GL_RGB : GL_RGBA;
      GLuint texture = 0;
      glGenTextures(1, &texture);
      glBindTexture(GL_TEXTURE_2D, texture);
      glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
      ASSERT_EQ(gluBuild2DMipmaps(GL_TEXTURE_2D, 3, width, height, format, GL_UNSIGNED_BYTE,
                                  pixels.get()),
                0);
      std::vector<MipmapLevel> levels;
      ASSERT_EQ(
          BuildMipmaps({width, height, format, GL_UNSIGNED_BYTE, pixels.get(), alignment, maxSize},
                       levels),
          0);
      int theirWidth = 0;
      int theirHeight = 0;
      for (std::size_t i = 0; i < levels.size(); ++i) {
        const auto theirs = LevelInMesa(static_cast<int>(i), theirWidth, theirHeight);
        ASSERT_EQ(levels[i].width, theirWidth) << "level " << i;
        ASSERT_EQ(levels[i].height, theirHeight) << "level " << i;
        // Floats that end just below an integer are cut by GLU.
        EXPECT_LE(Difference(levels[i], theirs, channels), 1) << "level " << i;
      }
      EXPECT_TRUE(levels.back().width == 1 && levels.back().height == 1);
      glDeleteTextures(1, &texture);
    }
  }
}

TEST(MipmapsTest, RefuseWhatGluRefuses) {
  const Mesa mesa(1, 1);
  const std::array<std::uint8_t, 16> pixels{};
  const struct {
    GLsizei width, height;
    GLenum format, type;
  } cases[] = {{0, 2, GL_RGB, GL_UNSIGNED_BYTE},
               {2, -1, GL_RGB, GL_UNSIGNED_BYTE},
               {2, 2, GL_TEXTURE_2D, GL_UNSIGNED_BYTE},
               {2, 2, GL_RGBA, GL_RGBA},
               {0, 2, GL_RGBA, GL_RGBA}};
  for (const auto& [width, height, format, type] : cases) {
    std::vector<MipmapLevel> levels(1);
    EXPECT_EQ(BuildMipmaps({width, height, format, type, pixels.data(), 4, 64}, levels),
              gluBuild2DMipmaps(GL_TEXTURE_2D, 3, width, height, format, type, pixels.data()));
    EXPECT_TRUE(levels.empty());
  }
}

TEST(MipmapsTest, KeepToTheLargestTexture) {
  std::vector<MipmapLevel> levels;
  const auto pixels = Noise(std::size_t{64} * 3 * 3);
  ASSERT_EQ(BuildMipmaps({64, 3, GL_RGB, GL_UNSIGNED_BYTE, pixels.get(), 1, 16}, levels), 0);
  EXPECT_EQ(levels.front().width, 16);
  EXPECT_EQ(levels.front().height, 1);
  EXPECT_EQ(levels.size(), 5U);
}

TEST(ExtensionsTest, AreWholeWords) {
  const char* extensions = "GL_b GL_ab  GL_a";
  for (const char* name : {"GL_a", "GL_b", "GL_ab", "GL", "GL_", "_a", "GL_abc"}) {
    EXPECT_EQ(HasExtension(name, extensions),
              gluCheckExtension(reinterpret_cast<const GLubyte*>(name),
                                reinterpret_cast<const GLubyte*>(extensions)) == GL_TRUE)
        << name;
  }
  EXPECT_FALSE(HasExtension("GL_a", nullptr));
  EXPECT_FALSE(HasExtension("", extensions));
}

} // namespace
} // namespace halvenor::raster
