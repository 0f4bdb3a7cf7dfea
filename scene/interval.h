// Lengths of time as seconds.
#pragma once

#include "platform/carbon.h"

namespace halvenor {

/// `delta` in seconds, from milliseconds (0 or more) or negated microseconds.
inline float IntervalSeconds(Duration delta) {
  return static_cast<float>(delta >= 0 ? delta / 1000.0 : delta / -1000000.0);
}

} // namespace halvenor
