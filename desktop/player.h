// Everything that can be heard or listened to, for the window, the menus and other programs.
#pragma once

#include "host/plugin_host.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
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

/// Plays media or listens to the computer, and keeps the plug-in told: records, track and stream,
/// play, pause, stop, and that nothing happens. One thread. What can fail is told by `Reported`,
/// and the player goes on.
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
    Waiting, ///< the device or the sound server is gone; it goes on when it is back
    Ended    ///< nothing plays
  };

  /// One thing to listen to.
  struct Source {
    QString name;        ///< what `Listen` takes; the same on every start
    QString description; ///< for people
    bool isMicrophone = false;
    bool isDefault = false; ///< the monitor of the default output now
  };

  /// `plugin` must outlive this object or `End`. What a person chose (source, volume, mute, offsets
  /// by output device) is kept in `settings`.
  Player(PluginHost& plugin, QSettings& settings);
  ~Player() override;

  /// Stops, and sends nothing from then on. May be repeated.
  void End();

  [[nodiscard]] Mode CurrentMode() const;
  [[nodiscard]] Signal CurrentSignal() const;
  /// The name of the source or the medium, and the state in words: "no signal", "paused", "device
  /// gone, waiting", ... (empty while there is sound).
  [[nodiscard]] QString SourceName() const;
  [[nodiscard]] QString StateWords() const;
  [[nodiscard]] QString Title() const;
  [[nodiscard]] QString Artist() const;
  [[nodiscard]] QString Album() const; ///< of radio: the station
  /// The path or the URI of what plays, its bytes as they are; empty: nothing is played.
  [[nodiscard]] std::string Medium() const;
  /// A number that nothing else had that was played before.
  [[nodiscard]] unsigned TrackNumber() const;

  [[nodiscard]] std::vector<Source> Sources() const;
  /// The chosen source; empty: whatever the default output is.
  [[nodiscard]] QString ChosenSource() const;

  /// Which entry of what is queued plays; -1: none.
  [[nodiscard]] int QueueIndex() const;
  [[nodiscard]] bool CanGoNext() const;
  [[nodiscard]] bool CanGoPrevious() const;
  [[nodiscard]] bool CanSeek() const;
  /// Whether `Play` can do something: there is a queue.
  [[nodiscard]] bool CanPlay() const;
  [[nodiscard]] bool IsPaused() const;
  [[nodiscard]] double Position() const;              ///< seconds
  [[nodiscard]] std::optional<double> Length() const; ///< seconds; none for what has no end
  [[nodiscard]] double Volume() const;                ///< 0..1 as people hear it
  [[nodiscard]] bool IsMuted() const;
  /// How much later than the sound server says the sound is heard, milliseconds; kept for each
  /// output device.
  [[nodiscard]] int Offset() const;
  [[nodiscard]] QString OutputDevice() const;

  /// What is listened to while the computer is: its titles are shown then.
  void SetOthersTrack(const OthersTrack& track);

public slots:
  /// Listens to `source`; empty: to the default output, whatever that becomes.
  void Listen(const QString& source);
  /// Plays these from the first on: files, folders, playlists, addresses.
  void Open(const QStringList& media);
  void PlayEntry(int index);
  void Play();
  void Pause();
  void PlayPause();
  void Stop();
  void Next();
  void Previous();
  void Seek(double seconds);
  void SetVolume(double volume);
  void SetMuted(bool muted);
  void SetOffset(int milliseconds);

signals:
  /// Something of the state has changed (but for position and level).
  void Changed();
  void TrackChanged(const QString& title, const QString& artist);
  /// Position has jumped to that second.
  void Seeked(double seconds);
  /// The loudest of the last 50 ms before any gain, as a meter shows it: 0 is -60 dBFS or less, 1
  /// full scale.
  void LevelChanged(double level);
  /// One line for a person.
  void Reported(const QString& line);

private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

} // namespace halvenor
