// Rectangles that a program colors, fragment by fragment: what no kernel draws.
#include "raster/band.h"
#include "raster/resampling.h"

#include <algorithm>
#include <cmath>

namespace halvenor::raster {
namespace {

class ImageSampler : public Sampler {
public:
  explicit ImageSampler(const Programmed& command)
      : command_(command), image_(command.source.version ? &command.source.version->image
                                                         : command.source.level.get()) {}

  void Sample(std::span<const Vec4> at, std::span<Vec4> colors) const override {
    for (std::size_t i = 0; i < at.size(); ++i)
      colors[i] = image_ != nullptr ? Lookup(at[i]) : Vec4{0, 0, 0, 1};
  }

private:
  /// Between which texels a coordinate lies, and how far from the first one.
  struct Place {
    int first;
    int second;
    float weight;
  };

  [[nodiscard]] Place Find(float coordinate, int size, GLint wrap) const {
    float at = coordinate * static_cast<float>(size);
    if (!(std::fabs(at) < 1e9F)) at = 0.0F;
    if (command_.isLinear) at -= 0.5F;
    const float whole = std::floor(at);
    const int texel = static_cast<int>(whole);
    return {WrapTexel(texel, size, wrap), WrapTexel(texel + 1, size, wrap),
            command_.isLinear ? at - whole : 0.0F};
  }

  [[nodiscard]] Vec4 Lookup(const Vec4& at) const {
    const Place x = Find(at[0], image_->Width(), command_.wrapS);
    const Place y = Find(at[1], image_->Height(), command_.wrapT);
    Vec4 color{0, 0, 0, 1};
    const int planes = command_.source.opaque ? kPlanes - 1 : kPlanes;
    for (int plane = 0; plane < planes; ++plane) {
      const auto row = [&](int texel) {
        const Component* const texels = image_->Row(texel, plane);
        const auto first = static_cast<float>(texels[x.first]);
        return first + (static_cast<float>(texels[x.second]) - first) * x.weight;
      };
      const float below = row(y.first);
      color[static_cast<std::size_t>(plane)] =
          (below + (row(y.second) - below) * y.weight) / static_cast<float>(kOne);
    }
    return color;
  }

  const Programmed& command_;
  const Image* image_;
};

void Put(const Blend& blend, const Vec4& color, const RowPlaces& rows, int x, int y, int planes) {
  Colors source;
  Colors target;
  target[3] = kOne;
  for (int plane = 0; plane < kPlanes; ++plane) {
    const auto p = static_cast<std::size_t>(plane);
    source[p] = static_cast<int>(std::lround(color[p] * static_cast<float>(kOne)));
    if (plane < planes) target[p] = rows.At(y, plane)[x];
  }
  const Colors result = BlendPixel(blend, source, target);
  for (int plane = 0; plane < planes; ++plane)
    rows.At(y, plane)[x] = static_cast<Component>(result[static_cast<std::size_t>(plane)]);
}

} // namespace

void DrawProgrammed(const Programmed& command, const Band& band, int planes) {
  const ImageSampler sampler(command);
  const ProgramParameters parameters = {command.local.data(), nullptr};
  const Box& box = command.box;
  std::array<Vec4, kRowBatch> colors;
  for (int y = std::max(band.begin, box.bottom); y < std::min(band.end, box.top); ++y) {
    band.rows.MarkColored(y);
    for (int left = box.left; left < box.right; left += kRowBatch) {
      Varyings varyings = command.atFirst;
      for (std::size_t i = 0; i < varyings.size(); ++i)
        for (std::size_t k = 0; k < 4; ++k)
          varyings[i].start[k] += varyings[i].step[k] * static_cast<float>(left - box.left) +
                                  command.stepUp[i][k] * static_cast<float>(y - box.bottom);
      const int count = std::min(kRowBatch, box.right - left);
      const auto batch = std::span(colors).first(static_cast<std::size_t>(count));
      RunFragmentRow(*command.program, parameters, varyings, sampler, batch);
      for (int i = 0; i < count; ++i)
        Put(command.blend, batch[static_cast<std::size_t>(i)], band.rows, left + i, y, planes);
    }
  }
}

} // namespace halvenor::raster
