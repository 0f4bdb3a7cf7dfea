// Those who carry out GL calls in tests: Mesa and raster/, each with two pictures.
#pragma once

#include "gl_calls/gl_table.h"
#include "raster/context.h"

#include <array>
#include <cstdint>
#include <vector>

namespace halvenor {

constexpr int kWindow = 0; ///< what is looked at
constexpr int kTrails = 1; ///< shown in the texture that `TrailsTexture` names
struct PictureSize {
  int width, height;
};
constexpr PictureSize kPictureSizes[] = {{61, 47}, {32, 32}};

class GlPlayer {
public:
  virtual ~GlPlayer() = default;
  /// Valid until the next call of `Gl` of another player.
  virtual const gl_calls::Table& Gl() = 0;
  virtual void Bind(int picture) = 0;
  /// RGBA, bottom row first. The window's picture is undefined afterwards.
  virtual std::vector<std::uint8_t> Pixels(int picture) = 0;
  virtual void DefineBitmapList(GLuint list, const raster::Bitmap& bitmap) = 0;

  GLuint trailsTexture = 0;
  std::vector<GLuint> textures;
  std::vector<GLuint> programs;
  GLuint lists = 0;
};

class RasterPlayer : public GlPlayer {
public:
  explicit RasterPlayer(int threads) {
    context_.SetThreads(threads);
    const gl_calls::Table& gl = Gl();
    for (std::size_t i = 0; i < targets_.size(); ++i)
      targets_[i] = raster::Target::Make(kPictureSizes[i].width, kPictureSizes[i].height);
    gl.glGenTextures(1, &trailsTexture);
    gl.glBindTexture(GL_TEXTURE_2D, trailsTexture);
    context_.ShowInBoundTexture(targets_[kTrails]);
  }
  ~RasterPlayer() override { raster::Context::MakeCurrent(nullptr); }
  RasterPlayer(const RasterPlayer&) = delete;
  RasterPlayer& operator=(const RasterPlayer&) = delete;

  const gl_calls::Table& Gl() override {
    raster::Context::MakeCurrent(&context_);
    return raster::Context::Functions();
  }
  void Bind(int picture) override { context_.Bind(Target(picture)); }
  std::vector<std::uint8_t> Pixels(int picture) override {
    Gl();
    const raster::Target& target = Target(picture);
    const std::ptrdiff_t stride = std::ptrdiff_t{target.Width()} * 4;
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(stride * target.Height()));
    raster::Destination destination;
    destination.width = target.Width();
    destination.height = target.Height();
    destination.topRow = pixels.data() + stride * (target.Height() - 1);
    destination.stride = -stride;
    if (!context_.Finish(target, destination)) pixels.clear();
    return pixels;
  }
  void DefineBitmapList(GLuint list, const raster::Bitmap& bitmap) override {
    Gl();
    context_.DefineBitmapList(list, bitmap);
  }

private:
  const raster::Target& Target(int picture) { return targets_[static_cast<std::size_t>(picture)]; }

  raster::Context context_;
  std::array<raster::Target, 2> targets_;
};

} // namespace halvenor
