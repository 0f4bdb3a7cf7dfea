// X11 windows that pictures are put into from shared memory.
#pragma once

#include "platform/presenter.h"
#include "platform/x11/x11_connection.h"

#include <memory>

namespace halvenor::agl {

/// Whether the X server is on this machine and its usual windows have 8 bits a color.
bool CanShareMemory(X11Connection& connection);

/// Reads pictures into memory that the X server shares: where drawing is done by the processor, far
/// quicker than a swap. Null when the server is not on this machine or the window is of another
/// kind than 8-bit colors.
std::unique_ptr<Presenter> MakeX11ShmWindow(X11Connection& connection, unsigned long window);

} // namespace halvenor::agl
