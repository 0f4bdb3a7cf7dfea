#include "platform/window_system.h"

#include "platform/offscreen.h"
#include "platform/wayland/wayland_window_system.h"
#include "platform/x11/x11_window_system.h"

#include <vector>

namespace halvenor::agl {
namespace {

struct Row {
  HalvenorPortKind kind;
  bool (*isDrawable)(const HalvenorPort& port);
  std::shared_ptr<WindowSystem> (*open)(const HalvenorPort& port);
};

constexpr Row kRows[] = {
    {kHalvenorPortX11Window, [](const HalvenorPort& port) { return port.x11Window != 0; },
     OpenX11WindowSystem},
    {kHalvenorPortWaylandSurface,
     [](const HalvenorPort& port) {
       return port.waylandDisplay != nullptr && port.waylandSurface != nullptr;
     },
     OpenWaylandWindowSystem},
    {kHalvenorPortOffscreen, [](const HalvenorPort&) { return true; }, OpenOffscreenSystem},
};

const Row* RowOf(const HalvenorPort& port) {
  for (const Row& row : kRows)
    if (row.kind == port.kind) return &row;
  return nullptr;
}

} // namespace

bool WindowSystem::IsDrawable(const HalvenorPort& port) {
  const Row* const row = RowOf(port);
  return row != nullptr && row->isDrawable(port);
}

std::shared_ptr<WindowSystem> WindowSystem::For(const HalvenorPort* port) {
  static std::mutex lock;
  static std::vector<std::weak_ptr<WindowSystem>> known;
  HalvenorPort offscreen{};
  offscreen.kind = kHalvenorPortOffscreen;
  const HalvenorPort& wanted = port != nullptr ? *port : offscreen;

  const std::scoped_lock locked(lock);
  std::erase_if(known, [](const auto& system) { return system.expired(); });
  for (const auto& entry : known)
    if (auto system = entry.lock(); system && system->Serves(wanted)) return system;
  const Row* const row = RowOf(wanted);
  auto system = row != nullptr ? row->open(wanted) : nullptr;
  if (system) known.push_back(system);
  return system;
}

const EglDisplay* WindowSystem::Egl() {
  const std::scoped_lock locked(lock_);
  if (!hasEgl_) hasEgl_ = OpenEgl(egl_);
  return hasEgl_ ? &egl_ : nullptr;
}

} // namespace halvenor::agl
