#pragma once

#include "platform/ports.h"

#include <cstdint>

namespace halvenor::stand_ins {

/// An offscreen port without a receiver of frames.
inline HalvenorPort OffscreenPort(std::int16_t width, std::int16_t height) {
  HalvenorPort port = {};
  port.kind = kHalvenorPortOffscreen;
  port.bounds = {0, 0, height, width};
  return port;
}

} // namespace halvenor::stand_ins
