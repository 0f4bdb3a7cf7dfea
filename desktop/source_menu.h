// The choice of what to listen to.
#pragma once

#include "desktop/player.h"

#include <QtWidgets/QMenu>

namespace halvenor {

/// Fills a menu, each time it is opened, with what can be listened to now.
class SourceMenu final : public QObject {
  Q_OBJECT

public:
  SourceMenu(Player& player, QWidget& window) : player_(player), window_(window) {}

  /// From now on keeps what follows the present end of `menu` up to date.
  void Serve(QMenu& menu);

private:
  void Fill(QMenu& menu, qsizetype kept);
  void AddSources(QMenu& menu, bool microphones);
  void AskOffset();

  Player& player_;
  QWidget& window_;
};

} // namespace halvenor
