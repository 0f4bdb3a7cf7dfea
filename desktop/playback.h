// Sound and its messages: what the player tells becomes what the plug-in hears of.
#pragma once

#include "host/media_player.h"
#include "host/plugin_host.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

#include <cstdint>
#include <string>

namespace halvenor {

/// Plays media and keeps the plug-in told: the sound that is heard now, the track, play and stop,
/// and that nothing happens.
class Playback final : public QObject, private MediaPlayer::Listener {
  Q_OBJECT

public:
  /// `plugin` must outlive this object or `End`.
  explicit Playback(PluginHost& plugin);

  /// Plays `medium`, a path or a URI, from its start.
  void Open(const std::string& medium);
  /// Stops, and sends nothing from then on.
  void End();

signals:
  void TrackChanged(const QString& title, const QString& artist);
  /// One line that names the medium.
  void PlayFailed(const QString& error);

private:
  void Started(const MediaTags& tags) override;
  void TagsChanged(const MediaTags& tags) override;
  void Record(const RenderVisualData& record) override;
  void Ended() override;
  void Failed(const std::string& error) override;

  void Tick();
  void Stop();

  PluginHost& plugin_;
  MediaPlayer player_;
  QTimer timer_;
  QElapsedTimer sinceMessage_; ///< since the last record or idle message
  std::uint32_t records_ = 0;
  bool playing_ = false;
};

} // namespace halvenor
