#include "desktop/key_router.h"

#include "desktop/keys.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>

namespace halvenor {
namespace {

// Whether somebody is typing, or walks through a menu.
bool BelongsToWidgets() {
  if (QApplication::activePopupWidget() || QApplication::activeModalWidget()) return true;
  const QWidget* focus = QApplication::focusWidget();
  return focus &&
         (focus->testAttribute(Qt::WA_InputMethodEnabled) || qobject_cast<const QMenuBar*>(focus));
}

} // namespace

void KeyRouter::Watch(QWidget& window, QWindow& area) {
  window_ = window.windowHandle();
  window_->installEventFilter(this);
  area.installEventFilter(this);
}

bool KeyRouter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  if (watched != window_) return window_ && QCoreApplication::sendEvent(window_, event);
  if (BelongsToWidgets()) return false;
  emit Pressed();
  const auto& press = *static_cast<QKeyEvent*>(event);
  const std::optional<char> character = PluginCharacter(press);
  return character && visualizer_.Plugin().Key(*character, press.isAutoRepeat());
}

} // namespace halvenor
