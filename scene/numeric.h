// Conversions that are defined for every value.
#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>

namespace halvenor {

/// `value` truncated toward zero; beyond the type's range its nearest end, 0 for NaN.
std::int32_t TruncateToInt32(std::floating_point auto value) {
  constexpr decltype(value) kLimit = 2147483648.0F; // 2^31, exact
  if (value >= kLimit) return std::numeric_limits<std::int32_t>::max();
  if (value <= -kLimit) return std::numeric_limits<std::int32_t>::min();
  return std::isnan(value) ? 0 : static_cast<std::int32_t>(value);
}

} // namespace halvenor
