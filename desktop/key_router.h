// The way of a key press: the plug-in first, then everybody else.
#pragma once

#include "desktop/visualizer.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

namespace halvenor {

/// Offers each key press in a window to the plug-in, wherever the focus is but in a text field or
/// a menu. What the plug-in does not use goes on to the widget with the focus as if nothing had
/// been.
class KeyRouter final : public QObject {
  Q_OBJECT

public:
  explicit KeyRouter(Visualizer& visualizer) : visualizer_(visualizer) {}

  /// Watches the native window of `window`, which is shown, and `area` within it. May be repeated.
  void Watch(QWidget& window, QWindow& area);

signals:
  /// A key press is under way.
  void Pressed();

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  Visualizer& visualizer_;
  QPointer<QWindow> window_;
};

} // namespace halvenor
