// Draws a version's commands in a band of rows: what one thread does at a time.
#pragma once

#include "raster/surface.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace halvenor::raster {

/// Where rows lie; row 0 need not be there.
struct RowPlaces {
  Component* base = nullptr;
  std::uint8_t* black = nullptr; ///< marks, see `Image`
  std::ptrdiff_t pitch = 0;
  int stride = 0;
  [[nodiscard]] Component* At(int y, int plane) const {
    return base + pitch * y + std::ptrdiff_t{stride} * plane;
  }
  [[nodiscard]] bool IsBlack(int y) const { return black[y] != 0; }
  void MarkColored(int y) const { black[y] = 0; }
  /// Makes the colors of a row of `width` pixels 0.
  void Blacken(int y, int width) const;
};

struct Band {
  int number = 0;
  int begin = 0; ///< first row
  int end = 0;   ///< row after the last
  RowPlaces rows;
};

/// A row of texels, resampled along x, that the next row of pixels may need again.
struct CachedRow {
  const void* image = nullptr;
  const Resampling* across = nullptr;
  int row = -1;
  int order = 0; ///< when it was used last
};

/// One thread's memory while it draws a version.
class Scratch {
public:
  /// Grows to what `version` needs; `withBand`: with rows to draw a band into. False without
  /// memory.
  bool Fit(const Version& version, bool withBand);

  /// Rows of a band, as wide as the version.
  [[nodiscard]] const Image& BandImage() const { return band_; }
  /// Plane `plane` of a row for a source's colors.
  [[nodiscard]] Component* Colors(int plane) const { return colors_.Row(0, plane); }
  [[nodiscard]] Component* Mixed(int plane) const { return colors_.Row(1, plane); }
  /// Texel row `row` of a source, one component a pixel. Begins anew where `Forget` was called.
  const Component* const* Resampled(const Source& source, int row, int pixels);
  void Forget();

private:
  static constexpr std::size_t kRows = 12;
  std::size_t used_ = kRows; ///< two for each source: no more than the nearest cache holds
  Image band_;
  int bandWidth_ = 0; ///< of the picture that `band_` was last used for
  Image colors_;
  Image rows_;
  std::array<CachedRow, kRows> cached_;
  std::array<std::array<const Component*, kPlanes>, kRows> places_{};
  int order_ = 0;
};

/// `isKept`: others will look up the rows, whose edges and marks are brought up to date.
void DrawBand(const Version& version, const Band& band, bool isKept, Scratch& scratch);

// By kind of command; `planes` is how many the picture has.
void DrawQuadRow(const Quad& quad, const RowPlaces& rows, int y, int planes, Scratch& scratch);
void DrawFilter(const Filter& filter, const Band& band, int planes);
void DrawProgrammed(const Programmed& command, const Band& band, int planes);
void DrawFill(const Fill& fill, const Band& band, int planes);
void DrawSegments(const Segments& segments, const Band& band, int planes);
void DrawGradients(const Gradients& gradients, const Band& band, int planes);

/// One pixel by GL's rules for any factors, with alpha.
Colors BlendPixel(const Blend& blend, const Colors& source, const Colors& target);

/// A constant color's blending as target x keep + add, where the factors allow it.
struct LinearBlend {
  bool isPossible = false;
  Colors keep{}; ///< in shares of `kFactorOne`
  Colors add{};
};
LinearBlend MakeLinear(const Blend& blend, const Colors& source);

inline int Product(int a, int b) {
  return (a * b + 16384) >> 15;
}

} // namespace halvenor::raster
