// What is recorded: primitives in pixels of their target, ready to be drawn row by row.
#pragma once

#include "raster/pixels.h"
#include "raster/programs/execution.h"

#include <GL/gl.h>

#include <array>
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

namespace halvenor::raster {

struct Version;

/// A share of one, as a factor: 32768 leaves a component as it is.
constexpr int kFactorOne = 32768;

/// How a source is put over what is there.
struct Blend {
  GLenum source = GL_ONE; ///< factors of glBlendFunc; (GL_ONE, GL_ZERO) is no blending
  GLenum destination = GL_ZERO;
  bool operator==(const Blend&) const = default;
};

/// Pixels from (left, bottom) to before (right, top).
struct Box {
  int left = 0;
  int bottom = 0;
  int right = 0;
  int top = 0;
  [[nodiscard]] bool IsEmpty() const { return left >= right || bottom >= top; }
  bool operator==(const Box&) const = default;
};

using Colors = std::array<int, kPlanes>; ///< 0 to `kOne`

/// For each pixel of a row or of a column: between which two texels it lies, and how far from the
/// first to the second one.
struct Resampling {
  std::vector<std::int16_t> first;
  std::vector<std::int16_t> second; ///< `first` + 1 unless `hasSteps` is false
  std::vector<std::int16_t> weight; ///< 0 to `kOne`
  /// Every block of 8 pixels lies within 8 texels from its first one.
  std::vector<std::int16_t> blockStart;
  std::vector<std::uint8_t> blockShuffle; ///< 16 bytes a block
  std::vector<std::uint8_t> blockIsNarrow;
  /// The same for longer blocks: which texel from its first one each pixel begins at, and within
  /// how many texels all of them lie.
  static constexpr int kLongBlock = 32;
  std::vector<std::int16_t> longStart;
  std::vector<std::int16_t> longIndex;
  std::vector<std::int16_t> longReach; ///< 0: second texels do not follow the first ones
  bool isIdentity = false;             ///< pixel i is texel `first[0]` + i
};

/// An image that is looked up: another picture or a texture's level.
struct Source {
  std::shared_ptr<Version> version;   ///< null for a level
  std::shared_ptr<const Image> level; ///< null for a version
  bool opaque = true;
  int weight = kFactorOne;
  std::shared_ptr<const Resampling> across; ///< by pixels from the left of the quad's box
  std::shared_ptr<const Resampling> up;     ///< by pixels from the bottom of the quad's box
};

/// A weighted sum of sources, each channel changed by a polynomial or scaled, blended in.
struct Quad {
  Box box;
  Blend blend;
  std::vector<Source> sources;
  bool hasPolynomial = false;
  std::array<std::array<int, 4>, kPlanes> polynomial{}; ///< by power, in shares of `kFactorOne`
  std::array<int, kPlanes> scale{};                     ///< in shares of `kFactorOne`
  int evenAlpha = -1;                                   ///< alpha where it is the same everywhere
  int alphaFactor =
      kOne;     ///< multiplies the colors of a quad that replaces what it was to be added to
  int loss = 0; ///< light that each component loses before it is added
};

/// A weighted sum of a picture's pixels at whole distances, each written as it comes out.
struct Filter {
  static constexpr int kReach = kRowEdge; ///< of a tap, to both sides
  static constexpr std::size_t kMaxTaps = 32;
  struct Tap {
    int dx = 0;
    int dy = 0;
    int weight = 0; ///< in shares of `kFactorOne`
  };
  Box box;
  int offsetX = 0; ///< from a pixel to the texel that it shows
  int offsetY = 0;
  Source source;
  std::vector<Tap> taps; ///< by dy
};

/// One color over a box.
struct Fill {
  Box box;
  Blend blend;
  Colors color{};
};

/// Pixels along an axis. Position `i` along it is at `across` + i x `slope` on the other one.
struct Segment {
  std::int32_t across = 0; ///< 16.16 fixed point, at `first`
  std::int32_t slope = 0;
  std::int16_t first = 0;
  std::uint16_t count = 0;
  std::uint32_t color : 31; ///< in `Segments::colors`
  std::uint32_t upward : 1; ///< the axis is y; else x
};

/// Lines and characters, sorted into bands of rows.
struct Segments {
  Box box; ///< the viewport: what lies outside is not drawn
  Blend blend;
  std::vector<Colors> colors;
  std::vector<std::vector<Segment>> bands;
};

/// Pixels of one column or row, whose color changes along it.
struct Gradient {
  std::int16_t position = 0; ///< of the column or row
  std::int16_t first = 0;
  std::int16_t end = 0;
  std::int16_t upward = 0;                   ///< 1: a column
  std::array<std::int32_t, kPlanes> color{}; ///< in shares of 32768, at `first`
  std::array<std::int32_t, kPlanes> slope{}; ///< from one pixel to the next
};

/// Gradients that are added: at most one of each column, so that vectors draw a row of many.
struct Sheet {
  /// Columns are gathered in blocks of this many, and so are the widths of the lists.
  static constexpr int kBlock = 16;
  std::vector<std::int32_t> first;                ///< row
  std::vector<std::int32_t> end;                  ///< row after the last
  std::array<std::vector<std::int32_t>, 3> color; ///< at row 0, modulo 2^32
  std::array<std::vector<std::int32_t>, 3> slope;
  std::vector<std::int32_t> blockFirst;
  std::vector<std::int32_t> blockEnd;
};

/// Triangles: runs sorted into bands of rows, and sheets.
struct Gradients {
  Blend blend;
  bool adds = false; ///< to opaque pixels, whose alpha stays
  std::vector<std::vector<Gradient>> bands;
  std::vector<Sheet> sheets;
  std::vector<std::uint16_t> used; ///< sheets, by column
};

/// A rectangle that a program colors: one that is no polynomial of a sum of lookups.
struct Programmed {
  Box box;
  Blend blend;
  Source source; ///< `across` and `up` are not used; without an image, lookups find opaque black
  GLint wrapS = GL_CLAMP_TO_EDGE;
  GLint wrapT = GL_CLAMP_TO_EDGE;
  bool isLinear = true;
  std::shared_ptr<const Program> program;
  std::vector<Vec4> local; ///< `kMaxLocalParameters` of them
  Varyings atFirst{};      ///< along the lowest row
  Attributes stepUp{};     ///< from one row to the row above it
};

using Command = std::variant<Fill, Quad, Filter, Segments, Gradients, Programmed>;

/// Rows of a band: what one thread draws at a time. Any power of two gives the same picture.
constexpr int kBandRows = 16;

} // namespace halvenor::raster
