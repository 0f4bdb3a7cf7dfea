// Playing media one after the other.
#pragma once

#include "desktop/play_queue.h"
#include "host/media_player.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QThreadPool>

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace halvenor {

/// A `MediaPlayer` that walks through a queue. What cannot be played is told and passed over.
class QueuePlayer final : public QObject, private MediaPlayer::Listener {
  Q_OBJECT

public:
  /// `server` must outlive this object.
  explicit QueuePlayer(SoundServer& server);
  ~QueuePlayer() override;

  /// Plays what these stand for (files, folders, playlists, addresses) in place of the queue. They
  /// are looked up in the background.
  void Open(const QStringList& media);
  /// Plays the entry; false for what is no index.
  bool GoTo(int index);
  void Play();
  void Pause() { media_.Pause(); }
  /// Forgets what is still looked up, too.
  void Stop();
  /// Goes to a second of the entry; nothing happens where that cannot be done.
  void Seek(double seconds);
  void Poll();

  MediaPlayer& Media() { return media_; }
  [[nodiscard]] const MediaPlayer& Media() const { return media_; }
  [[nodiscard]] const PlayQueue& Queue() const { return queue_; }
  /// Whether something plays, waits in a pause, or is on its way.
  [[nodiscard]] bool IsActive() const;
  /// Whether its first sound is still to come.
  [[nodiscard]] bool IsOpening() const { return lookingUp_ || opening_; }
  /// Radio that has played is lost for now.
  [[nodiscard]] bool IsReconnecting() const { return reconnecting_; }
  [[nodiscard]] bool IsPaused() const;
  /// Whether nothing has sounded for two seconds.
  [[nodiscard]] bool IsSilent() const { return silent_; }
  /// Whether for two seconds nothing has come at all, not even silence: a stream that stalls, an
  /// output that hangs.
  [[nodiscard]] bool IsStuck() const { return stuck_; }

  /// A number that no other entry had that was played before.
  [[nodiscard]] unsigned EntryNumber() const { return entryNumber_; }
  [[nodiscard]] const MediaTags& Tags() const { return tags_; }
  /// Of radio only.
  [[nodiscard]] const std::optional<StreamTags>& Radio() const { return radio_; }

signals:
  /// The entry, its texts or the state have changed.
  void Changed();
  void RecordDue(const RenderVisualData& record);
  void LevelChanged(double level);
  void Reported(const QString& line);

private:
  struct Found {
    std::vector<QueueEntry> entries;
    std::vector<std::string> problems;
  };
  static Found LookUp(const QStringList& media, const std::stop_token& stop);

  void Started(const MediaTags& tags) override;
  void TagsChanged(const MediaTags& tags) override;
  void StreamTagsChanged(const StreamTags& tags) override;
  void Record(const RenderVisualData& record) override;
  void StateChanged(MediaPlayer::State state) override;
  void AboutToEnd() override;
  void Ended() override;
  void Failed(const std::string& error) override;
  void Reconnecting(const std::string& reason) override;

  void Forget();
  void OpenCurrent();
  void GoOn();
  void TellChange();
  void LookAtSilence();
  void LookAtLength();
  void Tell(const std::optional<std::string>& line);

  MediaPlayer media_;
  PlayQueue queue_;
  FailureTally failures_;
  MediaTags tags_;
  std::optional<StreamTags> radio_;
  QThreadPool lookUps_; ///< of one thread, which keeps them in order
  unsigned entryNumber_ = 0;
  std::optional<double> length_; ///< as it was told last
  std::stop_source lookUp_;      ///< of the last one: what was looked up before comes too late
  bool lookingUp_ = false;       ///< for `Open`
  bool opening_ = false;         ///< `Started` is still to come
  bool nextIsGiven_ = false;     ///< `Started` without `opening_` is the next entry's
  bool reconnecting_ = false;
  bool silent_ = false;
  bool stuck_ = false;
  bool changed_ = false; ///< and not yet told
  QElapsedTimer sinceSound_;
  QElapsedTimer sinceRecord_;
};

} // namespace halvenor
