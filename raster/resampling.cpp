#include "raster/resampling.h"

#include <algorithm>
#include <cmath>

namespace halvenor::raster {
namespace {

constexpr std::size_t kBlock = 8;

void AddBlocks(Resampling& r) {
  const std::size_t blocks = (r.first.size() + kBlock - 1) / kBlock;
  r.blockStart.resize(blocks);
  r.blockShuffle.resize(blocks * 16);
  r.blockIsNarrow.resize(blocks);
  for (std::size_t block = 0; block < blocks; ++block) {
    const std::size_t begin = block * kBlock;
    const std::size_t end = std::min(begin + kBlock, r.first.size());
    const int start = r.first[begin];
    bool isNarrow = true;
    for (std::size_t i = begin; i < end; ++i) {
      const int texel = r.first[i] - start;
      isNarrow = isNarrow && texel >= 0 && texel < static_cast<int>(kBlock) &&
                 (r.second[i] == r.first[i] + 1 || r.weight[i] == 0);
      r.blockShuffle[block * 16 + 2 * (i - begin)] = static_cast<std::uint8_t>(2 * texel);
      r.blockShuffle[block * 16 + 2 * (i - begin) + 1] = static_cast<std::uint8_t>(2 * texel + 1);
    }
    r.blockStart[block] = static_cast<std::int16_t>(start);
    r.blockIsNarrow[block] = isNarrow ? 1 : 0;
  }
}

void AddLongBlocks(Resampling& r) {
  constexpr std::size_t kLong = Resampling::kLongBlock;
  const std::size_t blocks = (r.first.size() + kLong - 1) / kLong;
  r.longStart.resize(blocks);
  r.longReach.resize(blocks);
  r.longIndex.resize(blocks * kLong);
  for (std::size_t block = 0; block < blocks; ++block) {
    const std::size_t begin = block * kLong;
    const std::size_t end = std::min(begin + kLong, r.first.size());
    const int start = *std::min_element(r.first.data() + begin, r.first.data() + end);
    int reach = 0;
    bool isEven = true;
    for (std::size_t i = begin; i < end; ++i) {
      const int texel = r.first[i] - start;
      reach = std::max(reach, texel + 1);
      isEven = isEven && (r.second[i] == r.first[i] + 1 || r.weight[i] == 0);
      r.longIndex[i] = static_cast<std::int16_t>(texel);
    }
    r.longStart[block] = static_cast<std::int16_t>(start);
    r.longReach[block] = static_cast<std::int16_t>(isEven ? reach : 0);
  }
}

} // namespace

int WrapTexel(int texel, int size, GLint wrap) {
  if (wrap != GL_REPEAT) return std::clamp(texel, 0, size - 1);
  const int rest = texel % size;
  return rest < 0 ? rest + size : rest;
}

std::shared_ptr<const Resampling> MakeResampling(const Positions& positions) {
  auto made = std::make_shared<Resampling>();
  Resampling& r = *made;
  const auto count = static_cast<std::size_t>(positions.count);
  r.first.resize(count);
  r.second.resize(count);
  // Vectors may load the last block whole.
  r.weight.resize(count + kRowPadding);
  r.isIdentity = true;
  for (std::size_t i = 0; i < count; ++i) {
    double at = positions.start + positions.step * static_cast<double>(i);
    if (!(std::fabs(at) < 1e9)) at = 0.0;
    if (positions.isLinear) at -= 0.5;
    const double whole = std::floor(at);
    int weight = 0;
    if (positions.isLinear) weight = static_cast<int>(std::lround((at - whole) * kFactorOne));
    int texel = static_cast<int>(whole);
    if (weight == kFactorOne) {
      ++texel;
      weight = 0;
    }
    const int first = WrapTexel(texel, positions.size, positions.wrap);
    const int second = WrapTexel(texel + 1, positions.size, positions.wrap);
    if (first == second) weight = 0;
    r.first[i] = static_cast<std::int16_t>(first);
    r.second[i] = static_cast<std::int16_t>(second);
    r.weight[i] = static_cast<std::int16_t>(weight);
    r.isIdentity = r.isIdentity && weight == 0 && first == r.first[0] + static_cast<int>(i);
  }
  AddBlocks(r);
  AddLongBlocks(r);
  return made;
}

std::shared_ptr<const Resampling> Resamplings::Get(const Positions& positions) {
  for (const Entry& entry : entries_)
    if (entry.resampling && entry.positions == positions) return entry.resampling;
  Entry& entry = entries_[next_];
  next_ = (next_ + 1) % entries_.size();
  entry = {positions, MakeResampling(positions)};
  return entry.resampling;
}

Source WholePicture(const VersionPtr& version) {
  Source source;
  source.version = version;
  source.opaque = version->opaque;
  source.across = MakeResampling({version->width, 0.5, 1.0, version->width});
  source.up = MakeResampling({version->height, 0.5, 1.0, version->height});
  return source;
}

} // namespace halvenor::raster
