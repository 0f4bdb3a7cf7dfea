// Lengths of time as seconds.
#pragma once

#include "platform/carbon.h"

namespace halvenor {

/// `delta` in seconds, from whichever of its two units it is in.
inline float IntervalSeconds(Duration delta) {
  return static_cast<float>(delta >= 0 ? delta / 1000.0 : delta / -1000000.0);
}

} // namespace halvenor
