// Textures: levels of pixels, or a picture that is drawn to.
#pragma once

#include "raster/surface.h"

#include <GL/gl.h>

#include <memory>
#include <vector>

namespace halvenor::raster {

struct Texture {
  struct Level {
    std::shared_ptr<const Image> image;
    bool opaque = true;
  };
  std::vector<Level> levels;
  std::shared_ptr<Surface> shown; ///< instead of levels
  GLint minFilter = GL_NEAREST_MIPMAP_LINEAR;
  GLint magFilter = GL_LINEAR;
  GLint wrapS = GL_REPEAT;
  GLint wrapT = GL_REPEAT;

  [[nodiscard]] bool UsesMipmaps() const {
    return minFilter != GL_NEAREST && minFilter != GL_LINEAR;
  }
  [[nodiscard]] int Width() const;
  [[nodiscard]] int Height() const;
  /// Whether it can be looked up: it has all the levels that its filter asks for.
  [[nodiscard]] bool IsComplete() const;
};

/// Pixels as glTexImage2D takes them: bytes of GL_RGB or GL_RGBA, rows at multiples of `alignment`,
/// `rowLength` pixels apart (0: `width`).
struct PixelSource {
  GLsizei width = 0;
  GLsizei height = 0;
  GLenum format = GL_RGB;
  const void* pixels = nullptr; ///< null: black
  int alignment = 4;
  int rowLength = 0;
};

/// `hasAlpha` false: alpha of the source is dropped. An empty image without memory.
std::shared_ptr<const Image> MakeLevel(const PixelSource& source, bool hasAlpha);

} // namespace halvenor::raster
