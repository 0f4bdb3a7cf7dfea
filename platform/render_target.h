// The frame buffer objects that the plug-in draws into.
#pragma once

#include <GL/gl.h>

namespace halvenor::agl {

struct Size {
  GLsizei width = 0;
  GLsizei height = 0;

  [[nodiscard]] bool IsEmpty() const { return width <= 0 || height <= 0; }
  bool operator==(const Size&) const = default;
};

/// Colour (8-bit RGBA) and, when wanted, 24-bit depth. Move-only; an empty one has no name. Its
/// context must be current wherever one is made, bound, moved over or destroyed.
class RenderTarget {
public:
  RenderTarget() = default;
  ~RenderTarget();
  RenderTarget(RenderTarget&& other) noexcept;
  RenderTarget& operator=(RenderTarget&& other) noexcept;

  /// A cleared target, bound for drawing and reading. Empty when the driver cannot make it; then
  /// no GL error is left pending and whichever frame buffer was bound is bound still.
  static RenderTarget Make(Size size, bool depth);

  explicit operator bool() const { return frameBuffer_ != 0; }
  [[nodiscard]] Size GetSize() const { return size_; }
  [[nodiscard]] GLuint Name() const { return frameBuffer_; }

  /// Gives the texture bound to GL_TEXTURE_2D this target's size and makes it the colour buffer, of
  /// 10 bits a colour and 2 for alpha where the driver can draw into that, else of 8 each. The
  /// picture is undefined until it is cleared. Leaves the target bound. False, with no GL error
  /// pending, when the driver cannot do it; then nobody sees what is drawn here.
  [[nodiscard]] bool ShowInBoundTexture();

  /// Directs drawing and reading here.
  void Bind() const;

private:
  Size size_;
  GLuint frameBuffer_ = 0;
  GLuint color_ = 0;
  GLuint depth_ = 0;
};

} // namespace halvenor::agl
