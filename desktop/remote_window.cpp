#include "desktop/remote_window.h"

#include "desktop/main_window.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtGui/QKeySequence>
#include <QtGui/QWindow>
#include <qpa/qwindowsysteminterface.h>

namespace halvenor {

RemoteWindow::RemoteWindow(MainWindow& window) : window_(window) {
  window_.installEventFilter(this);
}

bool RemoteWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::WindowStateChange) {
    // The window itself hears of it after this filter.
    QTimer::singleShot(0, this, &RemoteWindow::FullScreenChanged);
  }
  return QObject::eventFilter(watched, event);
}

bool RemoteWindow::IsFullScreen() const {
  return window_.isFullScreen();
}

void RemoteWindow::SetFullScreen(bool fullScreen) {
  window_.SetFullScreen(fullScreen);
}

void RemoteWindow::Raise() {
  if (window_.isMinimized()) window_.setWindowState(window_.windowState() & ~Qt::WindowMinimized);
  window_.show();
  window_.raise();
  window_.activateWindow();
}

bool RemoteWindow::PressKey(const QString& key) {
  const bool isCharacter = key.size() == 1 && key.front().isPrint();
  const QKeySequence sequence(key == QLatin1String(" ") ? QStringLiteral("Space") : key);
  const bool isNamed = sequence.count() == 1 && sequence[0].key() != Qt::Key_unknown;
  if ((!isCharacter && !isNamed) || !window_.windowHandle()) return false;
  const Qt::Key code = isNamed ? sequence[0].key() : Qt::Key_unknown;
  Qt::KeyboardModifiers modifiers = isNamed ? sequence[0].keyboardModifiers() : Qt::NoModifier;
  if (isCharacter && key.front().isUpper()) modifiers |= Qt::ShiftModifier;
  QString text = isCharacter ? key : QString();
  if (code == Qt::Key_Space) text = QStringLiteral(" ");
  // As from the keyboard: by way of the plug-in, the shortcuts and the focus.
  for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
    QWindowSystemInterface::handleKeyEvent(window_.windowHandle(), type, code, modifiers, text);
  }
  return true;
}

void RemoteWindow::Quit() {
  QTimer::singleShot(0, &window_, [window = &window_] {
    window->close();
    QCoreApplication::quit();
  });
}

} // namespace halvenor
