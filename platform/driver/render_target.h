// The frame buffer objects that a driver draws into.
#pragma once

#include "platform/buffer.h"

#include <memory>

namespace halvenor::agl {

/// Color (8-bit RGBA) and, when wanted, 24-bit depth.
class RenderTarget final : public Buffer {
public:
  /// A cleared target, bound for drawing and reading. Null when the driver cannot make it; then no
  /// GL error is left pending and whichever frame buffer was bound is bound still.
  static std::unique_ptr<RenderTarget> Make(Size size, bool depth);
  ~RenderTarget() override;

  [[nodiscard]] GLuint Name() const { return frameBuffer_; }

  /// The texture is of 10 bits a color and 2 for alpha where the driver can draw into that, else
  /// of 8 each. Leaves the target bound.
  [[nodiscard]] GLenum ShowInBoundTexture() override;
  void Read(GLint x, GLint y, Size size, const Pixels& pixels) override;

  /// Directs drawing and reading here.
  void Bind() const;

private:
  explicit RenderTarget(Size size) : Buffer(size) {}

  GLuint frameBuffer_ = 0;
  GLuint color_ = 0;
  GLuint depth_ = 0;
};

} // namespace halvenor::agl
