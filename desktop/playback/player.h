// Everything that can be played or listened to, for the window, the menus and other programs.
#pragma once

#include "audio/sound_server.h"
#include "desktop/playback/listening.h"
#include "desktop/playback/plugin_feed.h"
#include "desktop/playback/queue_playback.h"
#include "desktop/playback/sound_settings.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class QSettings;

namespace halvenor {

/// What another program of this desktop says that it plays.
struct OthersTrack {
  QString player; ///< its name, for people; empty: nobody plays
  QString title;
  QString artist;
  bool isPaused = false;
  friend bool operator==(const OthersTrack&, const OthersTrack&) = default;
};

/// Plays media or listens to the computer, and keeps the plug-in informed: records, track and
/// stream, play, pause, stop, idle. One thread. A failure is announced by `Reported`, and the
/// player goes on.
class Player final : public QObject {
  Q_OBJECT

public:
  enum class Mode { Idle, Listening, Playing };

  /// Why the picture moves or does not.
  enum class Signal {
    Sound,
    Connecting, ///< opening, buffering, reconnecting
    Silence,    ///< nothing above the noise floor for two seconds
    Paused,
    Waiting, ///< the device or the sound server is gone; goes on when it is back
    Ended    ///< nothing is playing
  };

  /// One thing to listen to.
  struct Source {
    QString name;        ///< what `Listen` takes; the same on every start
    QString description; ///< for people
    bool isMicrophone = false;
    bool isDefault = false; ///< the monitor of the default output now
  };

  /// `plugin` must outlive this object or `End`. `settings` keeps the source, the volume, mute and
  /// the delays.
  Player(PluginHost& plugin, QSettings& settings);

  /// Stops, and sends nothing from then on. May be repeated.
  void End();

  [[nodiscard]] Mode CurrentMode() const { return mode_; }
  [[nodiscard]] Signal CurrentSignal() const;
  /// The name of the source or of the medium.
  [[nodiscard]] QString SourceName() const;
  /// The state as a phrase, "No signal" for example; empty while there is sound.
  [[nodiscard]] QString StateText() const;
  [[nodiscard]] QString Title() const;
  [[nodiscard]] QString Artist() const;
  [[nodiscard]] QString Album() const; ///< of radio: the station
  /// The path or the URI of what is playing, its bytes unchanged; empty: nothing is.
  [[nodiscard]] std::string Medium() const;
  /// Different for each track that is played in the life of this object.
  [[nodiscard]] unsigned TrackNumber() const { return queue_.EntryNumber(); }

  [[nodiscard]] std::vector<Source> Sources() const;
  /// The chosen source; empty: whatever the default output is.
  [[nodiscard]] QString ChosenSource() const { return settings_.Source(); }

  [[nodiscard]] bool CanGoNext() const { return IsPlaying() && queue_.Queue().FromCurrent(1); }
  [[nodiscard]] bool CanGoPrevious() const { return IsPlaying() && queue_.Queue().FromCurrent(-1); }
  [[nodiscard]] bool CanSeek() const { return IsPlaying() && queue_.Media().CanSeek(); }
  /// Whether `Play` has something to play: there is a queue.
  [[nodiscard]] bool CanPlay() const { return queue_.Queue().Current() >= 0; }
  [[nodiscard]] bool IsPaused() const { return IsPlaying() && queue_.IsPaused(); }
  [[nodiscard]] double Position() const; ///< seconds
  /// Seconds; none for what has no end.
  [[nodiscard]] std::optional<double> Length() const;
  /// 0..1 as people hear it.
  [[nodiscard]] double Volume() const { return queue_.Media().Volume(); }
  [[nodiscard]] bool IsMuted() const { return queue_.Media().IsMuted(); }
  /// The delay of the output device in use, milliseconds (`SoundSettings::Delay`).
  [[nodiscard]] int Delay() const { return delay_; }
  [[nodiscard]] QString OutputDevice() const;

  /// The track whose titles are shown while the player listens.
  void SetOthersTrack(const OthersTrack& track);

public slots:
  /// Listens to `source`; empty: to the default output, whichever that is.
  void Listen(const QString& source);
  /// Plays these from the first on: files, folders, playlists, addresses.
  void Open(const QStringList& media);
  void Play();
  void Pause();
  void PlayPause();
  void Stop();
  void Next();
  /// Restarts the current track after three seconds of it, else plays the one before.
  void Previous();
  /// To `seconds` from the start, brought into the track's length.
  void Seek(double seconds);
  /// Brought to 0..1; not NaN.
  void SetVolume(double volume);
  void SetMuted(bool muted);
  /// For the output device in use; brought to `kMostOffset` either way.
  void SetDelay(int milliseconds);

signals:
  /// Something of the state has changed (other than position and level).
  void Changed();
  void TrackChanged(const QString& title, const QString& artist);
  /// `Open` was called with these.
  void Opened(const QStringList& media);
  /// The position has jumped to that second.
  void Seeked(double seconds);
  /// The `MeterLevel` of the last 50 ms, before any gain.
  void LevelChanged(double level);
  /// One line for a person.
  void Reported(const QString& line);
  /// What was reported so far no longer matters.
  void ReportsOutdated();

private:
  void ConnectParts();
  void Tick();
  void SetPace();
  [[nodiscard]] int NeededPace() const;
  void SetMode(Mode mode);
  void FollowServer();
  void FollowQueue();
  void FollowListening();
  void SendOthersTitles();
  void AnnounceChange();
  [[nodiscard]] bool IsPlaying() const { return mode_ == Mode::Playing; }
  [[nodiscard]] std::optional<SoundOutput> Output() const;

  SoundSettings settings_;
  SoundServer server_;
  PluginFeed feed_;
  Listening listening_;
  QueuePlayback queue_;
  QTimer timer_;
  Mode mode_ = Mode::Idle;
  OthersTrack others_;
  QString announcedTitle_;
  QString announcedArtist_;
  std::uint64_t serverChanges_ = 0;
  int delay_ = 0;
  bool ended_ = false;
};

} // namespace halvenor
