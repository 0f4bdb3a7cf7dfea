// X11 windows, on a connection of this layer's own.
#pragma once

#include "platform/window_system.h"

namespace halvenor::agl {

std::shared_ptr<WindowSystem> OpenX11WindowSystem(const HalvenorPort& port);

} // namespace halvenor::agl
