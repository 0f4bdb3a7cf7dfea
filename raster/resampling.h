// Where the pixels of a quad look into a texture.
#pragma once

#include "raster/surface.h"

#include <GL/gl.h>

#include <array>
#include <memory>

namespace halvenor::raster {

/// Texel positions along one axis: pixel i looks at `start` + i x `step`, where texel k has its
/// middle at k + 0.5.
struct Positions {
  int count = 0; ///< pixels
  double start = 0.0;
  double step = 0.0;
  int size = 0; ///< texels
  GLint wrap = GL_CLAMP_TO_EDGE;
  bool isLinear = true;
  bool operator==(const Positions&) const = default;
};

std::shared_ptr<const Resampling> MakeResampling(const Positions& positions);

/// Remembers the last ones: frames ask for the same again and again.
class Resamplings {
public:
  std::shared_ptr<const Resampling> Get(const Positions& positions);

private:
  struct Entry {
    Positions positions;
    std::shared_ptr<const Resampling> resampling;
  };
  std::array<Entry, 16> entries_;
  std::size_t next_ = 0;
};

/// All of a picture, pixel by pixel.
Source WholePicture(const VersionPtr& version);

/// The texel that stands for `texel` in a row of `size`.
int WrapTexel(int texel, int size, GLint wrap);

} // namespace halvenor::raster
