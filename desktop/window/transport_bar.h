// A slim bar with play, seek and volume controls.
#pragma once

#include "desktop/playback/player.h"
#include "desktop/window/action_menus.h"
#include "desktop/window/media_button.h"

#include <QtCore/QTimer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QSlider>
#include <QtWidgets/QWidget>

namespace halvenor {

class TransportBar final : public QWidget {
  Q_OBJECT

public:
  TransportBar(Player& player, ActionMenus& menus);

protected:
  void showEvent(QShowEvent* event) override;

private:
  void MakeContents(ActionMenus& menus);
  void Follow();
  void FollowPosition();

  Player& player_;
  MediaButton* play_ = nullptr;
  MediaButton* mute_ = nullptr;
  QLabel* time_ = nullptr;
  QSlider* seek_ = nullptr;
  QSlider* volume_ = nullptr;
  QTimer timer_; ///< runs while the bar is visible and the position moves
};

} // namespace halvenor
