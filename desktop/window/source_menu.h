// The menu of the sources to listen to.
#pragma once

#include "desktop/playback/player.h"

#include <QtCore/QHash>
#include <QtWidgets/QMenu>

namespace halvenor {

/// Fills menus with the sources that can be listened to.
class SourceMenu final : public QObject {
  Q_OBJECT

public:
  SourceMenu(Player& player, QWidget& window) : player_(player), window_(window) {}

  /// From now on updates what follows the present end of `menu`, each time before it opens.
  void Serve(QMenu& menu);

  /// Updates `menu`, which is served, now: its size is needed before it opens.
  void Update(QMenu& menu) { Fill(menu, kept_.value(&menu)); }

private:
  void Fill(QMenu& menu, qsizetype kept);
  void AddSources(QMenu& menu, bool microphones);
  void AskDelay();

  QHash<QMenu*, qsizetype> kept_; ///< actions in front of the sources
  Player& player_;
  QWidget& window_;
};

} // namespace halvenor
