#include "desktop/queue_player.h"

#include "desktop/fetch.h"
#include "desktop/shown_text.h"
#include "host/playlist.h"

#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <ranges>
#include <utility>

namespace halvenor {
namespace {

constexpr qint64 kSilenceMilliseconds = 2000;

std::string TitleOf(const PlaylistEntry& entry) {
  if (!entry.title.empty()) return entry.title;
  if (entry.medium.find("://") != std::string::npos) return entry.medium;
  const std::string name = std::filesystem::path(entry.medium).stem().string();
  return name.empty() ? entry.medium : name;
}

bool HasSound(const RenderVisualData& record) {
  return std::ranges::any_of(record.spectrum, [](const auto& channel) {
    return std::ranges::any_of(channel, [](std::uint8_t bin) { return bin > 0; });
  });
}

// As a meter shows it: -60 dBFS is 0 and full scale 1.
double MeterLevel(const RenderVisualData& record) {
  constexpr int kZero = 128;
  constexpr double kRange = 60; // decibels
  int peak = 0;
  for (const auto& channel : record.waveform) {
    for (const std::uint8_t value : channel)
      peak = std::max(peak, std::abs(value - kZero));
  }
  return peak == 0 ? 0 : std::max(0.0, 1 + 20 * std::log10(double(peak) / kZero) / kRange);
}

// In the background: what is far away takes its time.
Playlist ReadAnyPlaylist(const QString& medium, const std::stop_token& stop) {
  const std::string name = medium.toStdString();
  if (!IsPlaylistAddress(name)) return ReadPlaylist(name, stop);
  QString problem;
  const std::optional<QByteArray> bytes = FetchList(medium, stop, problem);
  if (!bytes) return {.entries = {}, .problems = {problem.toStdString()}};
  return ReadFetchedPlaylist(name, bytes->toStdString());
}

} // namespace

QueuePlayer::QueuePlayer(SoundServer& server) : media_(*this, {}, &server) {
  lookUps_.setMaxThreadCount(1);
}

QueuePlayer::~QueuePlayer() {
  lookUp_.request_stop();
}

// --- The queue ----------------------------------------------------------------------------------

QueuePlayer::Found QueuePlayer::LookUp(const QStringList& media, const std::stop_token& stop) {
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
    found.problems.push_back(media.join(QStringLiteral(", ")).toStdString() +
                             ": there is nothing in it that can be played");
  }
  return found;
}

void QueuePlayer::Open(const QStringList& media) {
  Forget();
  lookingUp_ = true;
  const std::stop_token stop = lookUp_.get_token();
  QtConcurrent::run(&lookUps_, LookUp, media, stop).then(this, [this, stop](Found found) {
    if (stop.stop_requested()) return;
    for (const std::string& problem : found.problems)
      Tell(problem);
    lookingUp_ = false;
    queue_.Replace(std::move(found.entries));
    if (!GoTo(0)) emit Changed();
  });
  emit Changed();
}

bool QueuePlayer::GoTo(int index) {
  if (!queue_.GoTo(index)) return false;
  failures_.Reset();
  OpenCurrent();
  emit Changed();
  return true;
}

void QueuePlayer::OpenCurrent() {
  opening_ = true;
  reconnecting_ = nextIsGiven_ = silent_ = stuck_ = false;
  radio_.reset();
  ++entryNumber_;
  const QueueEntry* entry = queue_.FromCurrent(0);
  tags_ = {.title = entry->title, .artist = {}, .album = {}};
  media_.Open(entry->medium);
}

void QueuePlayer::GoOn() {
  if (!failures_.IsHopeless() && queue_.GoTo(queue_.Current() + 1)) {
    OpenCurrent();
  } else {
    Tell(failures_.Ended(queue_.Entries().size()));
    queue_.GoTo(0); // where the next `Play` begins
  }
  changed_ = true;
}

void QueuePlayer::Play() {
  if (media_.CurrentState() == MediaPlayer::State::Paused) {
    media_.Play();
  } else if (!IsActive()) {
    GoTo(queue_.Current());
  }
}

void QueuePlayer::Stop() {
  Forget();
  emit Changed();
}

void QueuePlayer::Forget() {
  lookUp_.request_stop();
  lookUp_ = {};
  lookingUp_ = opening_ = reconnecting_ = false;
  media_.Stop();
}

void QueuePlayer::Seek(double seconds) {
  nextIsGiven_ = false;
  media_.Seek(seconds);
}

// --- The state ----------------------------------------------------------------------------------

bool QueuePlayer::IsActive() const {
  return lookingUp_ || opening_ || media_.CurrentState() != MediaPlayer::State::Stopped;
}

bool QueuePlayer::IsPaused() const {
  return media_.CurrentState() == MediaPlayer::State::Paused;
}

// --- What the media player tells ----------------------------------------------------------------

void QueuePlayer::Poll() {
  media_.Poll();
  LookAtSilence();
  TellChange();
}

void QueuePlayer::LookAtSilence() {
  const bool plays = !opening_ && media_.CurrentState() == MediaPlayer::State::Playing;
  const bool silent = plays && sinceSound_.hasExpired(kSilenceMilliseconds);
  const bool stuck = plays && sinceRecord_.hasExpired(kSilenceMilliseconds);
  changed_ |= std::exchange(silent_, silent) != silent;
  changed_ |= std::exchange(stuck_, stuck) != stuck;
}

// Several things that are told at once are one change, and it is told before the next sound.
void QueuePlayer::TellChange() {
  if (std::exchange(changed_, false)) emit Changed();
}

void QueuePlayer::Tell(const std::optional<std::string>& line) {
  if (line) emit Reported(QString::fromStdString(*line));
}

void QueuePlayer::Started(const MediaTags& tags) {
  if (!opening_ && nextIsGiven_) {
    queue_.GoTo(queue_.Current() + 1);
    radio_.reset();
    ++entryNumber_;
  }
  opening_ = reconnecting_ = nextIsGiven_ = silent_ = stuck_ = false;
  sinceSound_.start();
  sinceRecord_.start();
  tags_ = tags;
  length_ = media_.Length();
  Tell(failures_.Played());
  changed_ = true;
}

void QueuePlayer::TagsChanged(const MediaTags& tags) {
  tags_ = tags;
  changed_ = true;
}

void QueuePlayer::StreamTagsChanged(const StreamTags& tags) {
  radio_ = tags;
  changed_ = true;
}

void QueuePlayer::Record(const RenderVisualData& record) {
  sinceRecord_.start();
  if (HasSound(record)) sinceSound_.start();
  LookAtSilence();
  LookAtLength();
  TellChange();
  emit RecordDue(record);
  emit LevelChanged(MeterLevel(record));
}

// Of some kinds of files the length is known only after a while, or better than at first.
void QueuePlayer::LookAtLength() {
  constexpr double kClearly = 0.5; // seconds
  const std::optional<double> length = media_.Length();
  if (length.has_value() == length_.has_value() &&
      std::abs(length.value_or(0) - length_.value_or(0)) < kClearly)
    return;
  length_ = length;
  changed_ = true;
}

void QueuePlayer::StateChanged(MediaPlayer::State) {
  sinceSound_.start();
  sinceRecord_.start();
  changed_ = true;
}

void QueuePlayer::AboutToEnd() {
  const QueueEntry* next = queue_.FromCurrent(1);
  if (!next) return;
  nextIsGiven_ = true;
  media_.SetNext(next->medium);
}

void QueuePlayer::Ended() {
  GoOn();
}

void QueuePlayer::Failed(const std::string& error) {
  opening_ = false;
  Tell(failures_.Failed(error));
  GoOn();
}

void QueuePlayer::Reconnecting(const std::string& reason) {
  if (!std::exchange(reconnecting_, true)) Tell(reason);
  changed_ = true;
}

} // namespace halvenor
