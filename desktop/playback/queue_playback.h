// Playing media one after the other.
#pragma once

#include "audio/media_player.h"
#include "desktop/playback/failure_tally.h"
#include "desktop/playback/media_queue.h"

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

/// Walks a `MediaPlayer` through a queue. An entry that cannot be played is reported and skipped.
class QueuePlayback final : public QObject, private MediaPlayer::Listener {
  Q_OBJECT

public:
  /// `server` must outlive this object.
  explicit QueuePlayback(SoundServer& server);
  ~QueuePlayback() override;

  /// Replaces the queue by the contents of `media` (files, folders, playlists, addresses) and plays
  /// it from its start. The contents are read in the background.
  void Open(const QStringList& media);
  /// Plays the entry; returns false when `index` is out of range.
  bool GoTo(int index);
  void Play();
  void Pause() { media_.Pause(); }
  /// Stops, and cancels an `Open` that is still reading.
  void Stop();
  /// Seeks in the current entry, in seconds; does nothing where that is impossible.
  void Seek(double seconds);
  void Poll();

  MediaPlayer& Media() { return media_; }
  [[nodiscard]] const MediaPlayer& Media() const { return media_; }
  [[nodiscard]] const MediaQueue& Queue() const { return queue_; }
  /// Whether something plays, is paused or is being opened.
  [[nodiscard]] bool IsActive() const;
  /// Whether the first sound is still to come.
  [[nodiscard]] bool IsOpening() const { return expanding_ || opening_; }
  /// Whether a stream that has played is lost and tried again.
  [[nodiscard]] bool IsReconnecting() const { return reconnecting_; }
  [[nodiscard]] bool IsPaused() const;
  /// Whether there was only silence for two seconds.
  [[nodiscard]] bool IsSilent() const { return silent_; }
  /// Whether nothing at all came for two seconds, not even silence: the stream stalls, or the
  /// output hangs.
  [[nodiscard]] bool IsStuck() const { return stuck_; }

  /// Different for each entry that is played in the life of this object.
  [[nodiscard]] unsigned EntryNumber() const { return entryNumber_; }
  [[nodiscard]] const MediaTags& Tags() const { return tags_; }
  /// Of radio only.
  [[nodiscard]] const std::optional<StreamTags>& Radio() const { return radio_; }

signals:
  /// The entry, its texts or the state have changed.
  void Changed();
  void RecordDue(const RenderVisualData& record);
  void LevelChanged(double level); ///< `MeterLevel`
  /// One line for a person.
  void Reported(const QString& line);
  /// The stream whose loss was reported plays again.
  void Reconnected();

private:
  struct Found {
    std::vector<QueueEntry> entries;
    std::vector<std::string> problems;
  };
  static Found Expand(const QStringList& media, const std::stop_token& stop);

  void Started(const MediaTags& tags) override;
  void TagsChanged(const MediaTags& tags) override;
  void StreamTagsChanged(const StreamTags& tags) override;
  void Record(const RenderVisualData& record) override;
  void StateChanged(MediaPlayer::State state) override;
  void AboutToEnd() override;
  void SoundMissing(const std::string& text) override;
  void Ended() override;
  void Failed(const std::string& error) override;
  void Reconnecting(const std::string& reason) override;

  void StopAll();
  void OpenCurrent();
  void PlayNext();
  void AnnounceChange();
  void CheckSilence();
  void CheckLength();
  void Report(const FailureTally::Report& report);

  MediaPlayer media_;
  MediaQueue queue_;
  FailureTally failures_;
  MediaTags tags_;
  std::optional<StreamTags> radio_;
  QThreadPool expansions_; ///< of one thread, which keeps them in order
  unsigned entryNumber_ = 0;
  std::optional<double> length_; ///< as it was announced last
  std::stop_source expansion_;   ///< the latest; results of earlier ones are dropped
  bool expanding_ = false;       ///< for `Open`
  bool opening_ = false;         ///< `Started` is still to come
  bool nextIsGiven_ = false;     ///< `Started` without `opening_` is the next entry's
  bool reconnecting_ = false;
  bool silent_ = false;
  bool stuck_ = false;
  bool changed_ = false; ///< and not yet announced
  QElapsedTimer sinceSound_;
  QElapsedTimer sinceRecord_;
};

} // namespace halvenor
