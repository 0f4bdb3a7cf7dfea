// Wayland surfaces that pictures are put into from shared memory.
#pragma once

#include "platform/presenter.h"

#include <memory>

struct wl_display;
struct wl_surface;

namespace halvenor::agl {

/// Reads pictures into memory that the compositor shares. It never waits for the compositor: while
/// that holds all buffers, pictures are dropped. Null when the compositor offers no shared memory.
std::unique_ptr<Presenter> MakeWaylandShmSurface(wl_display* display, wl_surface* surface);

/// What `surface` is given is shown, from its next commit on, with this buffer scale; 0: with the
/// one that it has.
void SetSurfaceScale(wl_surface* surface, int scale);

} // namespace halvenor::agl
