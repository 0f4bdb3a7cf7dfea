// A slim bar to play, to seek and to set the volume with.
#pragma once

#include "desktop/commands.h"
#include "desktop/media_button.h"
#include "desktop/player.h"

#include <QtCore/QTimer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QSlider>
#include <QtWidgets/QWidget>

namespace halvenor {

class TransportBar final : public QWidget {
  Q_OBJECT

public:
  TransportBar(Player& player, Commands& commands);

protected:
  void showEvent(QShowEvent* event) override;

private:
  void MakeContents(Commands& commands);
  void Follow();
  void FollowPosition();

  Player& player_;
  MediaButton* play_ = nullptr;
  MediaButton* mute_ = nullptr;
  QLabel* time_ = nullptr;
  QSlider* seek_ = nullptr;
  QSlider* volume_ = nullptr;
  QTimer timer_; ///< runs while the bar is seen and the position moves
};

} // namespace halvenor
