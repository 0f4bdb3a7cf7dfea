// One entry for each kind of port: its display and its presenter.
#pragma once

#include "platform/egl_display.h"
#include "platform/presenter.h"

#include <memory>

namespace halvenor::agl {

/// The display behind `port`, or null with the reason logged.
std::shared_ptr<EglDisplay> OpenX11Display(const HalvenorPort& port);
std::shared_ptr<EglDisplay> OpenWaylandDisplay(const HalvenorPort& port);
std::shared_ptr<EglDisplay> OpenOffscreenDisplay();

/// Shows pictures in `port`, which the display behind it serves. The context that will draw must be
/// current. Null, with the reason logged, when the port cannot be drawn to.
std::unique_ptr<Presenter> MakeX11Presenter(EglDisplay& display, const HalvenorPort& port);
std::unique_ptr<Presenter> MakeWaylandPresenter(EglDisplay& display, const HalvenorPort& port);
std::unique_ptr<Presenter> MakeOffscreenPresenter(const HalvenorPort& port);

} // namespace halvenor::agl
