#include "platform/picture_pace.h"

#include <algorithm>

namespace halvenor::agl {
namespace {

// What is lost beyond this is lost: a single long frame must not cost a second of pictures.
constexpr std::uint64_t kMostBehind = 4 * PicturePace::kInterval;

} // namespace

void PicturePace::Add(std::uint64_t begin, std::uint64_t end, bool hasPicture) {
  if (IsPause(begin))
    behind_ = 0;
  else
    behind_ = std::min(behind_ + (end - lastEnd_), kMostBehind + kInterval);
  behind_ -= std::min(behind_, kInterval);
  lastEnd_ = end;
  skipped_ = hasPicture ? 0 : skipped_ + 1;
}

} // namespace halvenor::agl
