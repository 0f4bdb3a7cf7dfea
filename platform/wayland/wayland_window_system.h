// Wayland surfaces, on the host's connection.
#pragma once

#include "platform/window_system.h"

namespace halvenor::agl {

std::shared_ptr<WindowSystem> OpenWaylandWindowSystem(const HalvenorPort& port);

} // namespace halvenor::agl
