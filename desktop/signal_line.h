// The line that says why nothing moves.
#pragma once

#include "desktop/player.h"

#include <QtCore/QTimer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QWidget>

namespace halvenor {

/// Source, state, level, and a way to choose another source. It is wanted while there is no sound.
class SignalLine final : public QWidget {
  Q_OBJECT

public:
  /// `choose` runs when somebody wants another source.
  SignalLine(const Player& player, QAction& choose);

signals:
  void Wanted(bool wanted);

private:
  void Follow();
  void Announce();
  void ShowLevel(double level);

  const Player& player_;
  QLabel* text_ = nullptr;
  QProgressBar* level_ = nullptr;
  QTimer patience_; ///< for what is about to sound
};

} // namespace halvenor
