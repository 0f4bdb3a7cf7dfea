// Ports in windows cannot be drawn to yet.
#include "platform/agl_errors.h"
#include "platform/window_systems.h"

namespace halvenor::agl {

std::shared_ptr<EglDisplay> OpenWaylandDisplay(const HalvenorPort&) {
  Log("Wayland surfaces cannot be drawn to yet");
  return nullptr;
}

std::unique_ptr<Presenter> MakeWaylandPresenter(EglDisplay&, const HalvenorPort&) {
  return nullptr;
}

} // namespace halvenor::agl
