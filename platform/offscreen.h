// Offscreen ports: frames are handed to a callback.
#pragma once

#include "platform/window_system.h"

namespace halvenor::agl {

std::shared_ptr<WindowSystem> OpenOffscreenSystem(const HalvenorPort& port);

} // namespace halvenor::agl
