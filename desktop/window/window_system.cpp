#include "desktop/window/window_system.h"

#include <QtGui/QGuiApplication>

namespace halvenor {

WindowSystem CurrentWindowSystem() {
  const QString name = QGuiApplication::platformName();
  if (name == QLatin1String("xcb")) return WindowSystem::X11;
  return name.startsWith(QLatin1String("wayland")) ? WindowSystem::Wayland : WindowSystem::Other;
}

} // namespace halvenor
