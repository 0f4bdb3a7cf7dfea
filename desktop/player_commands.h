// The commands that concern the player.
#pragma once

#include "desktop/commands.h"
#include "desktop/player.h"

namespace halvenor {

/// Connects them, and keeps those enabled that can be done now.
class PlayerCommands final : public QObject {
  Q_OBJECT

public:
  PlayerCommands(Player& player, Commands& commands);

private:
  void Follow();
  void SeekBy(double seconds);

  Player& player_;
  Commands& commands_;
};

} // namespace halvenor
