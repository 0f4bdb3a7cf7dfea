// Images read from TGA files, and textures made from them.
//
// A failure prints one line on standard output and returns 0. Nothing is shared: each
// thread may work on its own image; functions for textures need a current GL context.
#pragma once

#include <cstdint>
#include <cstdio>

namespace halvenor {

/// Whoever owns one releases it with `DeleteTexture` and `DeleteBuffer`.
struct TextureImage {
  std::uint32_t textureId = 0;    ///< 0: no texture
  std::uint32_t bitsPerPixel = 0; ///< 24 or 32 after a good load
  std::uint32_t width = 0;        ///< pixels across
  std::uint32_t height = 0;       ///< pixels down
  /// R, G, B (and A) bytes without gaps, rows in the order of the file, then one pixel of zeros;
  /// from `malloc`, or null.
  std::uint8_t* pixels = nullptr;
};

/// Reads the resource called `fileName`: 24 or 32 bits a pixel, uncompressed or run-length encoded,
/// without an image ID, color map or offset. 1 on success; 0 on a failure, which may have changed
/// the sizes. In both cases a former buffer is released. Takes no more memory than the
/// pixels; the file is closed again.
int LoadTGA(TextureImage& image, const char* fileName);

/// The two ways in which pixels are stored. `image` has legal sizes and its buffer, `file` stands
/// at the pixels. 1 on success, 0 on a failure, which may have filled a part of the buffer.
int LoadTGA_RAW(TextureImage& image, std::FILE* file);
int LoadTGA_CMP(TextureImage& image, std::FILE* file);

/// Makes a texture in place of a former one, and leaves it bound: with `mipmaps` and without alpha,
/// or as the pixels are. Makes none when there are no pixels. Leaves the unpacking of pixels at
/// GL's defaults.
void CreateTexture(TextureImage& image, int mipmaps);

/// Do nothing when there is no texture, or no buffer.
void DeleteTexture(TextureImage& image);
void DeleteBuffer(TextureImage& image);

} // namespace halvenor
