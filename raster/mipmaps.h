// The two functions of GLU that the plug-in calls, without a context: rescaling of an image to
// mipmap levels, and the search in a list of extensions.
#pragma once

#include <GL/gl.h>

#include <cstdint>
#include <span>
#include <vector>

namespace halvenor::raster {

/// One level: rows of RGB or RGBA bytes without gaps, first row first.
struct MipmapLevel {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;
};

/// What gluBuild2DMipmaps is given, and what of the context's state it reads.
struct MipmapSource {
  GLsizei width = 0;
  GLsizei height = 0;
  GLenum format = GL_RGB;         ///< GL_RGB or GL_RGBA
  GLenum type = GL_UNSIGNED_BYTE; ///< nothing else
  const void* pixels = nullptr;   ///< rows start at multiples of `alignment`
  int alignment = 4;              ///< GL_UNPACK_ALIGNMENT: 1, 2, 4 or 8
  int maxSize = 0;                ///< GL_MAX_TEXTURE_SIZE: no level is wider or higher
};

/// Makes all levels down to 1x1 with the numbers that GLU makes: sizes rounded to powers of two, a
/// box filter to the first level, halves from there. 0, or GLU's error and no levels: an unknown
/// format or type is GLU_INVALID_ENUM, a size below 1 GLU_INVALID_VALUE, no memory
/// GLU_OUT_OF_MEMORY. Reads no byte beyond the last pixel.
GLint BuildMipmaps(const MipmapSource& source, std::vector<MipmapLevel>& levels);

/// As gluCheckExtension: whether `name` is a whole word of the list. Null is in no list.
bool HasExtension(const char* name, const char* extensions);

} // namespace halvenor::raster
