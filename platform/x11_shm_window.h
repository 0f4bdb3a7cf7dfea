// X11 windows that pictures are put into from shared memory.
#pragma once

#include "platform/presenter.h"
#include "platform/x11_connection.h"

#include <memory>

namespace halvenor::agl {

/// Reads pictures into memory that the X server shares: where drawing is done by the processor, far
/// quicker than a swap. The current context must be able to read the top row first
/// (frame_reader.h). Null when the server is not on this machine or the window is of another kind
/// than 8-bit colours.
std::unique_ptr<Presenter> MakeX11ShmWindow(X11Connection& connection, unsigned long window);

} // namespace halvenor::agl
