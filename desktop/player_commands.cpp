#include "desktop/player_commands.h"

namespace halvenor {
namespace {

constexpr double kSeekSeconds = 5;
constexpr double kVolumeStep = 0.05;

constexpr struct {
  Command command;
  void (Player::*act)();
} kActs[] = {
    {Command::PlayPause, &Player::PlayPause},
    {Command::Stop, &Player::Stop},
    {Command::Previous, &Player::Previous},
    {Command::Next, &Player::Next},
};

constexpr struct {
  Command command;
  double step;
} kSeeks[] = {{Command::SeekBack, -kSeekSeconds}, {Command::SeekForward, kSeekSeconds}},
  kVolumes[] = {{Command::Quieter, -kVolumeStep}, {Command::Louder, kVolumeStep}};

} // namespace

PlayerCommands::PlayerCommands(Player& player, Commands& commands)
    : player_(player), commands_(commands) {
  for (const auto& [command, act] : kActs)
    connect(&commands[command], &QAction::triggered, &player,
            [&player, act = act] { (player.*act)(); });
  for (const auto& [command, step] : kSeeks)
    connect(&commands[command], &QAction::triggered, this, [this, step = step] { SeekBy(step); });
  for (const auto& [command, step] : kVolumes) {
    connect(&commands[command], &QAction::triggered, &player,
            [&player, step = step] { player.SetVolume(qBound(0.0, player.Volume() + step, 1.0)); });
  }
  connect(&commands[Command::Mute], &QAction::triggered, &player, &Player::SetMuted);
  connect(&player, &Player::Changed, this, &PlayerCommands::Follow);
  Follow();
}

void PlayerCommands::Follow() {
  commands_[Command::PlayPause].setEnabled(player_.CanPlay());
  commands_[Command::Stop].setEnabled(player_.CurrentMode() != Player::Mode::Idle);
  commands_[Command::Previous].setEnabled(player_.CanGoPrevious() || player_.CanSeek());
  commands_[Command::Next].setEnabled(player_.CanGoNext());
  commands_[Command::SeekBack].setEnabled(player_.CanSeek());
  commands_[Command::SeekForward].setEnabled(player_.CanSeek());
  commands_[Command::Mute].setChecked(player_.IsMuted());
}

void PlayerCommands::SeekBy(double seconds) {
  const double last = player_.Length().value_or(player_.Position() + seconds);
  player_.Seek(qBound(0.0, player_.Position() + seconds, qMax(0.0, last)));
}

} // namespace halvenor
