// Frames drawn by raster/.
#pragma once

#include "raster/context.h"
#include "tests/raster/frames.h"

#include <array>
#include <vector>

namespace halvenor {

/// A context, current on this thread, with the pictures of `FrameApi`.
class CpuFrames {
public:
  CpuFrames(int width, int height, int threads) : width_(width), height_(height) {
    raster::Context::MakeCurrent(&context_);
    context_.SetThreads(threads);
    api_.gl.glGenTextures(4, api_.textures);
    for (int i = 0; i < kNumPictures; ++i) {
      const bool isWindow = i == kNumPictures - 1;
      auto& target = targets_[static_cast<std::size_t>(i)];
      target = raster::Target::Make(isWindow ? width : kTrailSize, isWindow ? height : kTrailSize);
      if (isWindow) continue;
      api_.gl.glBindTexture(GL_TEXTURE_2D, api_.textures[i]);
      context_.ShowInBoundTexture(target);
    }
    PrepareFrames(api_);
  }

  void Draw(const FrameLook& look, int number) { DrawFrame(api_, look, number, width_, height_); }

  /// RGBA, bottom row first.
  std::vector<std::uint8_t> Finish(int picture = kNumPictures - 1) {
    const raster::Target& target = targets_[static_cast<std::size_t>(picture)];
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(target.Width()) *
                                     static_cast<std::size_t>(target.Height()) * 4);
    raster::Destination to;
    to.width = target.Width();
    to.height = target.Height();
    to.stride = -std::ptrdiff_t{4} * to.width;
    to.topRow = pixels.data() - to.stride * (to.height - 1);
    context_.Finish(target, to);
    return pixels;
  }

  raster::Context& Context() { return context_; }
  FrameApi& Api() { return api_; }
  const raster::Target& Target(int picture) const {
    return targets_[static_cast<std::size_t>(picture)];
  }

private:
  int width_;
  int height_;
  raster::Context context_;
  std::array<raster::Target, kNumPictures> targets_;
  FrameApi api_{raster::Context::Functions(),
                [this](int picture) { context_.Bind(Target(picture)); }};
};

} // namespace halvenor
