// The line that says why the picture does not move.
#pragma once

#include "desktop/playback/player.h"

#include <QtCore/QTimer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QWidget>

namespace halvenor {

/// Source, state, level, and a button to choose another source. Wanted while there is no sound.
class SignalLine final : public QWidget {
  Q_OBJECT

public:
  /// The button triggers `choose`.
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
  QTimer patience_; ///< before "Opening" is shown
};

} // namespace halvenor
