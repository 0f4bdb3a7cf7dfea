// A card over the picture with the keyboard shortcuts.
#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QFrame>

namespace halvenor {

/// Asks to be hidden when it is clicked, when `Dismiss` is called, and after half a minute.
class KeysCard final : public QFrame {
  Q_OBJECT

public:
  KeysCard();

  void Dismiss() { emit Wanted(false); }

signals:
  void Wanted(bool wanted);

protected:
  void mousePressEvent(QMouseEvent*) override { emit Wanted(false); }
  void showEvent(QShowEvent*) override { timer_.start(); }
  void hideEvent(QHideEvent*) override { timer_.stop(); }

private:
  QTimer timer_;
};

} // namespace halvenor
