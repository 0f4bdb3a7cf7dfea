// A card over the picture that tells the keys.
#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QFrame>

namespace halvenor {

/// Goes away when it is clicked or some time has passed; whoever shows it lets any key do so, too.
class KeysCard final : public QFrame {
  Q_OBJECT

public:
  KeysCard();

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
