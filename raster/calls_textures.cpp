#include "raster/calls.h"
#include "raster/mipmaps.h"
#include "raster/names.h"

#include <GL/glext.h>
#include <GL/glu.h>

#include <algorithm>

namespace halvenor::raster::calls {
namespace {

bool IsFilter(GLint value, bool withMipmaps) {
  if (value == GL_NEAREST || value == GL_LINEAR) return true;
  return withMipmaps && value >= GL_NEAREST_MIPMAP_NEAREST && value <= GL_LINEAR_MIPMAP_LINEAR;
}

bool IsWrap(GLint value) {
  return value == GL_REPEAT || value == GL_CLAMP || value == GL_CLAMP_TO_EDGE;
}

/// Whether colors of this internal format have alpha; -1 for one that is not known.
int HasAlpha(GLint internalFormat) {
  switch (internalFormat) {
  case 3:
  case GL_RGB:
  case GL_RGB8:
    return 0;
  case 4:
  case GL_RGBA:
  case GL_RGBA8:
    return 1;
  default:
    return -1;
  }
}

int LargestLevel() {
  int level = 0;
  while (kMaxSize >> level > 1)
    ++level;
  return level;
}

/// Stores pixels as a level of the bound texture; false without memory.
bool Store(State& state, GLint level, const PixelSource& source, bool hasAlpha) {
  Texture& texture = *state.texture;
  texture.shown.reset();
  if (texture.levels.size() <= static_cast<std::size_t>(level))
    texture.levels.resize(static_cast<std::size_t>(level) + 1);
  Texture::Level& place = texture.levels[static_cast<std::size_t>(level)];
  place = {};
  if (source.width == 0 || source.height == 0) return true;
  place.image = MakeLevel(source, hasAlpha);
  place.opaque = !hasAlpha || source.format == GL_RGB;
  return place.image != nullptr;
}

} // namespace

void glBindTexture(State& state, GLenum target, GLuint name) {
  if (target != GL_TEXTURE_2D) return state.Fail(GL_INVALID_ENUM);
  if (name == state.textureName) return;
  state.texture = name == 0 ? state.noTexture : FindOrMake(state.textureNames, name);
  state.textureName = name;
}

void glDeleteTextures(State& state, GLsizei count, const GLuint* names) {
  if (count < 0) return state.Fail(GL_INVALID_VALUE);
  for (GLsizei i = 0; i < count; ++i) {
    if (names[i] == 0 || state.textureNames.erase(names[i]) == 0) continue;
    if (names[i] == state.textureName) glBindTexture(state, GL_TEXTURE_2D, 0);
  }
}

void glGenTextures(State& state, GLsizei count, GLuint* names) {
  if (count < 0) return state.Fail(GL_INVALID_VALUE);
  GiveNames(state.textureNames, count, names);
}

void glTexImage2D(State& state, GLenum target, GLint level, GLint internalFormat, GLsizei width,
                  GLsizei height, GLint border, GLenum format, GLenum type, const void* pixels) {
  if (target != GL_TEXTURE_2D || (format != GL_RGB && format != GL_RGBA) ||
      type != GL_UNSIGNED_BYTE)
    return state.Fail(GL_INVALID_ENUM);
  const int hasAlpha = HasAlpha(internalFormat);
  if (level < 0 || level > LargestLevel() || width < 0 || height < 0 || border != 0 ||
      hasAlpha < 0 || width > kMaxSize >> level || height > kMaxSize >> level)
    return state.Fail(GL_INVALID_VALUE);
  PixelSource source = {
      width, height, format, pixels, state.unpackAlignment, state.unpackRowLength};
  if (pixels != nullptr) {
    const int bytes = format == GL_RGBA ? 4 : 3;
    const std::int64_t length = std::int64_t{source.rowLength > 0 ? source.rowLength : width};
    const std::int64_t stride =
        (length * bytes + source.alignment - 1) / source.alignment * source.alignment;
    source.pixels = static_cast<const std::uint8_t*>(pixels) + stride * state.unpackSkipRows +
                    std::int64_t{state.unpackSkipPixels} * bytes;
  }
  if (!Store(state, level, source, hasAlpha != 0)) state.Fail(GL_OUT_OF_MEMORY);
}

void glTexParameteri(State& state, GLenum target, GLenum name, GLint value) {
  if (target != GL_TEXTURE_2D) return state.Fail(GL_INVALID_ENUM);
  Texture& texture = *state.texture;
  switch (name) {
  case GL_TEXTURE_MIN_FILTER:
    if (!IsFilter(value, true)) return state.Fail(GL_INVALID_ENUM);
    texture.minFilter = value;
    return;
  case GL_TEXTURE_MAG_FILTER:
    if (!IsFilter(value, false)) return state.Fail(GL_INVALID_ENUM);
    texture.magFilter = value;
    return;
  case GL_TEXTURE_WRAP_S:
  case GL_TEXTURE_WRAP_T:
    if (!IsWrap(value)) return state.Fail(GL_INVALID_ENUM);
    (name == GL_TEXTURE_WRAP_S ? texture.wrapS : texture.wrapT) = value;
    return;
  default:
    state.Fail(GL_INVALID_ENUM);
  }
}

GLint gluBuild2DMipmaps(State& state, GLenum target, GLint internalFormat, GLsizei width,
                        GLsizei height, GLenum format, GLenum type, const void* pixels) {
  const int hasAlpha = HasAlpha(internalFormat);
  if (hasAlpha < 0) return GLU_INVALID_VALUE;
  if (target != GL_TEXTURE_2D) return GLU_INVALID_ENUM;
  std::vector<MipmapLevel> levels;
  const GLint fault =
      BuildMipmaps({width, height, format, type, pixels, state.unpackAlignment, kMaxSize}, levels);
  if (fault != 0) return fault;
  GLint number = 0;
  for (const MipmapLevel& level : levels) {
    const PixelSource source = {level.width, level.height, format, level.pixels.data(), 1, 0};
    if (!Store(state, number++, source, hasAlpha != 0)) {
      state.Fail(GL_OUT_OF_MEMORY);
      return GLU_OUT_OF_MEMORY;
    }
  }
  return 0;
}

GLboolean gluCheckExtension(State& /*state*/, const GLubyte* name, const GLubyte* extensions) {
  return HasExtension(reinterpret_cast<const char*>(name),
                      reinterpret_cast<const char*>(extensions))
             ? GL_TRUE
             : GL_FALSE;
}

} // namespace halvenor::raster::calls
