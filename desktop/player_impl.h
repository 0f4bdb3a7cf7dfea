// The inside of the player: its parts, and how they follow one another.
#pragma once

#include "desktop/listening.h"
#include "desktop/player.h"
#include "desktop/plugin_feed.h"
#include "desktop/queue_player.h"
#include "host/sound_server.h"

#include <QtCore/QSettings>
#include <QtCore/QTimer>

#include <cstdint>
#include <optional>

namespace halvenor {

inline constexpr char kVolumeKey[] = "sound/volume";
inline constexpr char kMutedKey[] = "sound/muted";

struct Player::Impl {
  Impl(Player& player, PluginHost& plugin, QSettings& kept);

  void Connect();
  void Tick();
  void SetPace();
  void SetMode(Mode wanted);
  void FollowServer();
  void FollowPlaying();
  void FollowListening();
  void TellListeningTitles();
  void TellChange();
  void Report(const QString& line);
  void SetOffset(int milliseconds);
  void Keep(const QString& key, const QVariant& value);
  [[nodiscard]] bool Is(Mode asked) const { return mode == asked && !ended; }
  [[nodiscard]] int NeededPace() const;
  [[nodiscard]] std::optional<SoundOutput> Output() const;

  Player& self;
  QSettings& settings;
  SoundServer server;
  PluginFeed feed;
  Listening listening;
  QueuePlayer playing;
  QTimer timer;
  Mode mode = Mode::Idle;
  OthersTrack others;
  QString toldTitle;
  QString toldArtist;
  std::uint64_t serverChanges = 0;
  int offset = 0;
  bool ended = false;
};

} // namespace halvenor
