#include "desktop/playback/queue_playback.h"

#include "audio/analyzer.h"
#include "audio/playlist.h"
#include "desktop/media_names.h"
#include "desktop/playback/playlist_fetch.h"
#include "desktop/shown_text.h"

#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <ranges>
#include <utility>

namespace halvenor {
namespace {

constexpr qint64 kSilenceMilliseconds = 2000;

std::string TitleOf(const PlaylistEntry& entry) {
  if (!entry.title.empty()) return entry.title;
  if (IsAddress(entry.medium)) return entry.medium;
  const std::string name = std::filesystem::path(entry.medium).stem().string();
  return name.empty() ? entry.medium : name;
}

bool HasSound(const RenderVisualData& record) {
  return std::ranges::any_of(record.spectrum, [](const auto& channel) {
    return std::ranges::any_of(channel, [](std::uint8_t bin) { return bin > 0; });
  });
}

// Runs in the background: a list on a server takes its time.
Playlist ReadAnyPlaylist(const QString& medium, const std::stop_token& stop) {
  const std::string name = medium.toStdString();
  if (!IsPlaylistAddress(name)) return ReadPlaylist(name, stop);
  QString problem;
  const std::optional<QByteArray> bytes = FetchPlaylist(medium, stop, problem);
  if (!bytes) return {.entries = {}, .problems = {problem.toStdString()}};
  return ReadFetchedPlaylist(name, bytes->toStdString());
}

} // namespace

QueuePlayback::QueuePlayback(SoundServer& server) : media_(*this, {}, &server) {
  expansions_.setMaxThreadCount(1);
}

QueuePlayback::~QueuePlayback() {
  expansion_.request_stop();
}

// --- The queue ----------------------------------------------------------------------------------

QueuePlayback::Found QueuePlayback::Expand(const QStringList& media, const std::stop_token& stop) {
  Found found;
  for (const QString& name : media) {
    Playlist list = ReadAnyPlaylist(name, stop);
    for (PlaylistEntry& entry : list.entries) {
      std::string title = TitleOf(entry);
      found.entries.push_back({std::move(entry.medium), std::move(title)});
    }
    std::ranges::move(list.problems, std::back_inserter(found.problems));
  }
  if (found.entries.empty() && found.problems.empty()) {
    found.problems.push_back(tr("%1 contains nothing that can be played")
                                 .arg(media.join(QStringLiteral(", ")))
                                 .toStdString());
  }
  return found;
}

void QueuePlayback::Open(const QStringList& media) {
  StopAll();
  expanding_ = true;
  const std::stop_token stop = expansion_.get_token();
  QtConcurrent::run(&expansions_, Expand, media, stop).then(this, [this, stop](Found found) {
    if (stop.stop_requested()) return;
    for (const std::string& problem : found.problems)
      emit Reported(ShownLine(problem));
    expanding_ = false;
    queue_.Replace(std::move(found.entries));
    if (!GoTo(0)) emit Changed();
  });
  emit Changed();
}

bool QueuePlayback::GoTo(int index) {
  if (!queue_.GoTo(index)) return false;
  failures_.Reset();
  OpenCurrent();
  emit Changed();
  return true;
}

void QueuePlayback::OpenCurrent() {
  opening_ = true;
  reconnecting_ = nextIsGiven_ = silent_ = stuck_ = false;
  radio_.reset();
  ++entryNumber_;
  const QueueEntry* entry = queue_.FromCurrent(0);
  tags_ = {.title = entry->title, .artist = {}, .album = {}};
  media_.Open(entry->medium);
}

void QueuePlayback::PlayNext() {
  if (!failures_.IsHopeless() && queue_.GoTo(queue_.Current() + 1)) {
    OpenCurrent();
  } else {
    Report(failures_.Ended(queue_.Entries().size()));
    queue_.GoTo(0); // where the next `Play` starts
  }
  changed_ = true;
}

void QueuePlayback::Play() {
  if (media_.CurrentState() == MediaPlayer::State::Paused) {
    media_.Play();
  } else if (!IsActive()) {
    GoTo(queue_.Current());
  }
}

void QueuePlayback::Stop() {
  StopAll();
  emit Changed();
}

void QueuePlayback::StopAll() {
  expansion_.request_stop();
  expansion_ = {};
  expanding_ = opening_ = reconnecting_ = false;
  media_.Stop();
}

void QueuePlayback::Seek(double seconds) {
  nextIsGiven_ = false;
  media_.Seek(seconds);
}

// --- The state ----------------------------------------------------------------------------------

bool QueuePlayback::IsActive() const {
  return expanding_ || opening_ || media_.CurrentState() != MediaPlayer::State::Stopped;
}

bool QueuePlayback::IsPaused() const {
  return media_.CurrentState() == MediaPlayer::State::Paused;
}

// --- Events of the media player ----------------------------------------------------------------

void QueuePlayback::Poll() {
  media_.Poll();
  CheckSilence();
  AnnounceChange();
}

void QueuePlayback::CheckSilence() {
  const bool plays = !opening_ && media_.CurrentState() == MediaPlayer::State::Playing;
  const bool silent = plays && sinceSound_.hasExpired(kSilenceMilliseconds);
  const bool stuck = plays && sinceRecord_.hasExpired(kSilenceMilliseconds);
  changed_ |= std::exchange(silent_, silent) != silent;
  changed_ |= std::exchange(stuck_, stuck) != stuck;
}

// Several things that happen at once are announced as one change, before the next sound.
void QueuePlayback::AnnounceChange() {
  if (std::exchange(changed_, false)) emit Changed();
}

void QueuePlayback::Report(const FailureTally::Report& report) {
  if (report) emit Reported(*report);
}

void QueuePlayback::Started(const MediaTags& tags) {
  if (!opening_ && nextIsGiven_) {
    queue_.GoTo(queue_.Current() + 1);
    radio_.reset();
    ++entryNumber_;
  }
  if (reconnecting_) emit Reconnected();
  opening_ = reconnecting_ = nextIsGiven_ = silent_ = stuck_ = false;
  sinceSound_.start();
  sinceRecord_.start();
  tags_ = tags;
  length_ = media_.Length();
  Report(failures_.Played());
  changed_ = true;
}

void QueuePlayback::TagsChanged(const MediaTags& tags) {
  tags_ = tags;
  changed_ = true;
}

void QueuePlayback::StreamTagsChanged(const StreamTags& tags) {
  radio_ = tags;
  changed_ = true;
}

void QueuePlayback::Record(const RenderVisualData& record) {
  sinceRecord_.start();
  if (HasSound(record)) sinceSound_.start();
  CheckSilence();
  CheckLength();
  AnnounceChange();
  emit RecordDue(record);
  emit LevelChanged(static_cast<double>(MeterLevel(record)));
}

// The length of some kinds of files is known only after a while, or becomes more exact.
void QueuePlayback::CheckLength() {
  constexpr double kClearly = 0.5; // seconds
  const std::optional<double> length = media_.Length();
  if (length.has_value() == length_.has_value() &&
      std::abs(length.value_or(0) - length_.value_or(0)) < kClearly)
    return;
  length_ = length;
  changed_ = true;
}

void QueuePlayback::StateChanged(MediaPlayer::State) {
  sinceSound_.start();
  sinceRecord_.start();
  changed_ = true;
}

void QueuePlayback::AboutToEnd() {
  const QueueEntry* next = queue_.FromCurrent(1);
  if (!next) return;
  nextIsGiven_ = true;
  media_.SetNext(next->medium);
}

void QueuePlayback::SoundMissing(const std::string& text) {
  emit Reported(ShownLine(text));
}

void QueuePlayback::Ended() {
  PlayNext();
}

void QueuePlayback::Failed(const std::string& error) {
  opening_ = false;
  Report(failures_.Failed(ShownLine(error)));
  PlayNext();
}

void QueuePlayback::Reconnecting(const std::string& reason) {
  if (!std::exchange(reconnecting_, true)) emit Reported(ShownLine(reason));
  changed_ = true;
}

} // namespace halvenor
