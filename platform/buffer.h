// What the plug-in draws into, whoever draws.
#pragma once

#include <GL/gl.h>

#include <cstddef>
#include <cstdint>

namespace halvenor::agl {

struct Size {
  GLsizei width = 0;
  GLsizei height = 0;

  [[nodiscard]] bool IsEmpty() const { return width <= 0 || height <= 0; }
  bool operator==(const Size&) const = default;
};

/// Rows of pixels in memory, 4 bytes each, where a picture is to be written.
struct Pixels {
  enum class Order : std::uint8_t {
    Rgba, ///< bytes R, G, B, A
    Xrgb, ///< 32-bit words 0xAARRGGBB
  };

  std::uint8_t* topRow = nullptr;
  std::ptrdiff_t stride = 0; ///< bytes from one row to the row below it; a multiple of 4
  Order order = Order::Rgba;
};

/// Its context must be current wherever one is used or destroyed.
class Buffer {
public:
  explicit Buffer(Size size) : size_(size) {}
  virtual ~Buffer() = default;
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  [[nodiscard]] Size GetSize() const { return size_; }

  /// Gives the texture bound to GL_TEXTURE_2D this buffer's size and makes it show what is drawn
  /// here; the picture is undefined until it is cleared. May change which buffer is bound. Returns
  /// an error of agl.h: `AGL_BAD_VALUE` when no texture is bound, `AGL_NO_BUFFER`, with no GL error
  /// pending, when it cannot be done; then nobody sees what is drawn here.
  [[nodiscard]] virtual GLenum ShowInBoundTexture() = 0;

  /// Writes the part of `size` pixels from `x`, `y` (bottom left), which lies inside, to `pixels`,
  /// and waits until that is done. Afterwards the picture is undefined, as after a swap.
  virtual void Read(GLint x, GLint y, Size size, const Pixels& pixels) = 0;

private:
  Size size_;
};

} // namespace halvenor::agl
