// Whole frames, without a driver.
#include "raster/kernels.h"
#include "tests/raster/cpu_frames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace halvenor {
namespace {

constexpr int kWidth = 333;
constexpr int kHeight = 190;

std::vector<std::uint8_t> Frames(int threads, const FrameLook& look) {
  CpuFrames frames(kWidth, kHeight, threads);
  std::vector<std::uint8_t> picture;
  for (int number = 0; number < 6; ++number) {
    frames.Draw(look, number);
    picture = frames.Finish();
  }
  EXPECT_EQ(frames.Api().gl.glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  return picture;
}

TEST(Frames, AreTheSameBytesWhoeverDrawsThem) {
  for (const FrameLook& look : {FrameLook{}, FrameLook{0.02F, -0.2F, 5, 3, true, true, false},
                                FrameLook{0, 0, 1, 1, false}}) {
    raster::UseKernels(0);
    const auto expected = Frames(1, look);
    EXPECT_GT(*std::max_element(expected.begin(), expected.end()), 0);
    EXPECT_EQ(expected == Frames(3, look), true);
    for (int kernels = 1; kernels < raster::NumKernels(); ++kernels) {
      raster::UseKernels(kernels);
      EXPECT_EQ(expected == Frames(1, look), true) << "kernels " << kernels;
    }
    raster::UseKernels(0);
  }
}

TEST(Frames, TrailsFadeToExactBlack) {
  for (const float fade : {0.0F, 0.004F, 0.1F, 0.9F})
    for (const int copies : {1, 4}) {
      CpuFrames frames(8, 8, 1);
      FrameLook look{fade, 0.0F, copies, 4, false};
      frames.Draw(look, 0);
      look.passes = 0;
      int number = 1;
      const auto isBlack = [&] {
        const auto pixels = frames.Finish((number - 1) % 2);
        for (std::size_t i = 0; i < pixels.size(); ++i)
          if (i % 4 != 3 && pixels[i] != 0) return false;
        return true;
      };
      EXPECT_FALSE(isBlack());
      while (number < 3000 && !isBlack())
        frames.Draw(look, number++);
      EXPECT_LT(number, 3000) << "fade " << fade << ", copies " << copies;
    }
}

TEST(Frames, UnseenOnesChangeNoPicture) {
  CpuFrames seen(kWidth, kHeight, 1);
  CpuFrames unseen(kWidth, kHeight, 1);
  std::vector<std::uint8_t> picture;
  for (int number = 0; number < 25; ++number) {
    raster::Context::MakeCurrent(&seen.Context());
    seen.Draw({}, number);
    picture = seen.Finish();
    raster::Context::MakeCurrent(&unseen.Context());
    unseen.Draw({}, number);
    if (number < 24) unseen.Context().Drop(unseen.Target(kNumPictures - 1));
  }
  EXPECT_EQ(picture == unseen.Finish(), true);
}

TEST(Frames, ContextsComeAndGoOnManyThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i)
    threads.emplace_back([i] {
      for (int round = 0; round < 4; ++round)
        Frames(1 + (i + round) % 3, {0.1F, 0.03F, 1, 1});
    });
  for (std::thread& thread : threads)
    thread.join();
}

} // namespace
} // namespace halvenor
