// Which window system the program runs on.
#pragma once

namespace halvenor {

enum class WindowSystem { X11, Wayland, Other };

/// Of the running application.
WindowSystem CurrentWindowSystem();

inline bool IsOnWayland() {
  return CurrentWindowSystem() == WindowSystem::Wayland;
}

} // namespace halvenor
