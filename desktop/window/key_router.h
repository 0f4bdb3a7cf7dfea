// The road of a key press: the plug-in first, then everybody else.
#pragma once

#include "desktop/window/visualizer.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtGui/QKeyEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

#include <optional>

namespace halvenor {

/// The character code of a key press as a plug-in gets it: Mac OS Roman, with that system's codes
/// for the keys that print nothing (arrows, return, delete, ...). None for keys without a
/// character, for keys pressed with Ctrl, Alt or Meta, which are desktop shortcuts, and for
/// characters that the encoding lacks.
std::optional<char> PluginCharacter(const QKeyEvent& event);

/// Offers each key press in a window to the plug-in, wherever the focus is except in a text field
/// or a menu. What the plug-in does not use goes on to the widget with the focus.
class KeyRouter final : public QObject {
  Q_OBJECT

public:
  explicit KeyRouter(Visualizer& visualizer) : visualizer_(visualizer) {}

  /// Watches the native window of `window`, which is shown, and `area` within it. May be repeated.
  void Watch(QWidget& window, QWindow& area);

  /// Presses and releases keys as if on the keyboard: each a character or the name of a key. Does
  /// nothing and returns the first unknown one where there is one, else an empty text.
  QString Press(const QStringList& keys);

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
