// The state of one context, as GL keeps it.
#pragma once

#include "raster/executor.h"
#include "raster/matrix.h"
#include "raster/programs/program.h"
#include "raster/programs/program_text.h"
#include "raster/resampling.h"
#include "raster/surface.h"
#include "raster/texture.h"

#include <GL/gl.h>

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace halvenor::raster {

struct Vertex {
  float x = 0.0F; ///< as given
  float y = 0.0F;
  float z = 0.0F;
  Vec4 color{};
  float s = 0.0F;
  float t = 0.0F;
};

/// A vertex in pixels of the target.
struct PixelVertex {
  float x = 0.0F;
  float y = 0.0F;
  Vec4 color{};
  float s = 0.0F;
  float t = 0.0F;
};

/// A character as runs of pixels.
struct BitmapList {
  struct Run {
    int x = 0; ///< from the left column
    int y = 0; ///< from the bottom row
    int length = 0;
  };
  std::vector<Run> runs;
  float xOrigin = 0.0F;
  float yOrigin = 0.0F;
  float xMove = 0.0F;
  float yMove = 0.0F;
};

struct ProgramObject {
  GLenum target = 0; ///< 0 until it is bound
  std::optional<Program> program;
  std::array<Vec4, kMaxLocalParameters> local{};
};

/// Names that GL gives out, and what they name. Null: given out, but not used yet.
template <class Object>
using Names = std::map<GLuint, std::shared_ptr<Object>>;

struct State {
  static constexpr std::size_t kMaxMatrices = 32;

  GLenum error = GL_NO_ERROR;
  std::vector<Matrix> matrices{Matrix()};
  std::array<GLint, 4> viewport{};
  Vec4 clearColor{};

  Vec4 color{1, 1, 1, 1};
  float s = 0.0F;
  float t = 0.0F;
  bool begun = false;
  GLenum mode = GL_POINTS;
  std::vector<Vertex> vertices;
  std::vector<PixelVertex> pixels; ///< kept for its memory
  Resamplings resamplings;

  bool blends = false;
  bool textures = false;
  bool vertexPrograms = false;
  bool fragmentPrograms = false;
  Blend blend; ///< of glBlendFunc, whether or not it is on

  Names<Texture> textureNames;
  GLuint textureName = 0;
  std::shared_ptr<Texture> texture = std::make_shared<Texture>(); ///< bound; never null
  std::shared_ptr<Texture> noTexture = texture;                   ///< the one called 0

  Names<ProgramObject> programNames;
  GLuint vertexProgramName = 0;
  GLuint fragmentProgramName = 0;
  std::shared_ptr<ProgramObject> vertexProgram = std::make_shared<ProgramObject>();
  std::shared_ptr<ProgramObject> fragmentProgram = std::make_shared<ProgramObject>();
  ProgramError programError{-1, ""};

  Names<BitmapList> lists;

  std::array<float, 2> rasterPosition{};
  bool rasterIsValid = true;
  Vec4 rasterColor{1, 1, 1, 1};

  GLint unpackAlignment = 4;
  GLint unpackRowLength = 0;
  GLint unpackSkipRows = 0;
  GLint unpackSkipPixels = 0;

  const std::uint8_t* array = nullptr; ///< of glInterleavedArrays, GL_V2F
  GLsizei arrayStride = 0;             ///< bytes

  std::weak_ptr<Surface> target;
  Executor executor;

  [[nodiscard]] Matrix& Top() { return matrices.back(); }
  /// GL keeps the first error until it is read.
  void Fail(GLenum code) {
    if (error == GL_NO_ERROR) error = code;
  }
};

} // namespace halvenor::raster
