#include "desktop/playback/player.h"

#include "desktop/shown_text.h"

#include <algorithm>

namespace halvenor {
namespace {

constexpr double kRestartSeconds = 3; // after these, "previous" restarts the current track

// Milliseconds between two looks at what is going on: records are due every 50 ms and must be in
// time while there is sound; idle messages are due every 100 ms.
constexpr int kSoundPace = 10;
constexpr int kSilencePace = 50;
constexpr int kIdlePace = 100;

} // namespace

Player::Player(PluginHost& plugin, QSettings& settings)
    : settings_(settings), feed_(plugin), listening_(server_), queue_(server_) {
  queue_.Media().SetVolume(settings_.Volume());
  queue_.Media().SetMuted(settings_.IsMuted());
  ConnectParts();
  SetPace();
}

void Player::ConnectParts() {
  connect(&timer_, &QTimer::timeout, this, &Player::Tick);
  const auto record = [this](const RenderVisualData& data) { feed_.Record(data); };
  connect(&queue_, &QueuePlayback::Changed, this, &Player::FollowQueue);
  connect(&queue_, &QueuePlayback::RecordDue, this, record);
  connect(&queue_, &QueuePlayback::LevelChanged, this, &Player::LevelChanged);
  connect(&queue_, &QueuePlayback::Reported, this, &Player::Reported);
  connect(&queue_, &QueuePlayback::Reconnected, this, &Player::ReportsOutdated);
  connect(&listening_, &Listening::Changed, this, &Player::FollowListening);
  connect(&listening_, &Listening::RecordDue, this, record);
  connect(&listening_, &Listening::LevelChanged, this, &Player::LevelChanged);
  connect(&listening_, &Listening::Reported, this, &Player::Reported);
  connect(&listening_, &Listening::SourceBack, this, &Player::ReportsOutdated);
}

void Player::End() {
  if (ended_) return;
  SetMode(Mode::Idle);
  timer_.stop();
  ended_ = true;
}

// --- What is going on ---------------------------------------------------------------------------

Player::Signal Player::CurrentSignal() const {
  if (mode_ == Mode::Idle) return Signal::Ended;
  if (mode_ == Mode::Playing) {
    if (queue_.IsOpening() || queue_.IsReconnecting()) return Signal::Connecting;
    if (queue_.IsPaused()) return Signal::Paused;
    if (queue_.IsStuck()) return Signal::Waiting;
    return queue_.IsSilent() ? Signal::Silence : Signal::Sound;
  }
  switch (listening_.State()) {
  case CaptureSource::State::Listening:
    return Signal::Sound;
  case CaptureSource::State::NoSignal:
  case CaptureSource::State::Muted:
    return Signal::Silence;
  case CaptureSource::State::DeviceGone:
  case CaptureSource::State::ServerGone:
    return Signal::Waiting;
  default:
    return Signal::Connecting;
  }
}

QString Player::SourceName() const {
  if (mode_ == Mode::Listening) return listening_.SourceDescription();
  const QueueEntry* entry = queue_.Queue().FromCurrent(0);
  if (mode_ == Mode::Idle || !entry) return {};
  const auto& radio = queue_.Radio();
  return ShownLine(radio && !radio->station.empty() ? radio->station : entry->title);
}

QString Player::StateText() const {
  if (mode_ == Mode::Listening) {
    if (listening_.State() == CaptureSource::State::NoSignal && others_.isPaused)
      return tr("No signal: %1 is paused").arg(others_.player);
    return listening_.StateText();
  }
  switch (CurrentSignal()) {
  case Signal::Connecting:
    return queue_.IsReconnecting() ? tr("Connection lost, reconnecting") : tr("Opening");
  case Signal::Paused:
    return tr("Paused");
  case Signal::Waiting:
    return tr("No data, waiting");
  case Signal::Silence:
    return tr("Silence");
  case Signal::Ended:
    return tr("Nothing is playing");
  default:
    return {};
  }
}

QString Player::Title() const {
  if (mode_ == Mode::Listening) return others_.title;
  if (mode_ == Mode::Idle) return {};
  const auto& radio = queue_.Radio();
  return ShownLine(radio && !radio->title.empty() ? radio->title : queue_.Tags().title);
}

QString Player::Artist() const {
  if (mode_ == Mode::Listening) return others_.artist;
  return mode_ == Mode::Idle ? QString() : ShownLine(queue_.Tags().artist);
}

QString Player::Album() const {
  if (!IsPlaying()) return {};
  const auto& radio = queue_.Radio();
  return ShownLine(radio ? radio->station : queue_.Tags().album);
}

std::string Player::Medium() const {
  const QueueEntry* entry = queue_.Queue().FromCurrent(0);
  return IsPlaying() && entry ? entry->medium : std::string();
}

std::vector<Player::Source> Player::Sources() const {
  std::vector<Source> sources;
  for (const SoundSource& source : server_.Sources()) {
    const bool isMicrophone = source.kind == SoundSource::Kind::Microphone;
    sources.push_back({.name = QString::fromStdString(source.name),
                       .description = ShownLine(source.description),
                       .isMicrophone = isMicrophone,
                       .isDefault = source.isDefault && !isMicrophone});
  }
  return sources;
}

double Player::Position() const {
  return IsPlaying() ? queue_.Media().Position() : 0;
}

std::optional<double> Player::Length() const {
  return IsPlaying() ? queue_.Media().Length() : std::nullopt;
}

std::optional<SoundOutput> Player::Output() const {
  if (mode_ == Mode::Listening) {
    const auto& outputs = server_.Outputs();
    const auto heard = std::ranges::find(outputs, listening_.SourceName(), &SoundOutput::monitor);
    if (heard != outputs.end()) return *heard;
  }
  return server_.DefaultOutput();
}

QString Player::OutputDevice() const {
  const std::optional<SoundOutput> output = Output();
  return output ? ShownLine(output->description) : QString();
}

// --- Commands -----------------------------------------------------------------------------------

void Player::Listen(const QString& source) {
  if (ended_) return;
  emit ReportsOutdated();
  SetMode(Mode::Listening);
  settings_.SetSource(source);
  listening_.Begin(source);
  FollowListening();
}

void Player::Open(const QStringList& media) {
  if (ended_ || media.isEmpty()) return;
  emit ReportsOutdated();
  emit Opened(media);
  queue_.Open(media);
}

void Player::Play() {
  if (!ended_) queue_.Play();
}

void Player::Pause() {
  if (IsPlaying()) queue_.Pause();
}

void Player::PlayPause() {
  if (IsPlaying() && !IsPaused()) {
    Pause();
  } else {
    Play();
  }
}

void Player::Stop() {
  if (ended_) return;
  SetMode(Mode::Idle);
  AnnounceChange();
}

void Player::Next() {
  if (CanGoNext()) queue_.GoTo(queue_.Queue().Current() + 1);
}

void Player::Previous() {
  if (CanGoPrevious() && Position() < kRestartSeconds) {
    queue_.GoTo(queue_.Queue().Current() - 1);
  } else {
    Seek(0);
  }
}

void Player::Seek(double seconds) {
  if (!CanSeek()) return;
  const double end = Length().value_or(seconds);
  const double wanted = std::clamp(seconds, 0.0, std::max(end, 0.0));
  queue_.Seek(wanted);
  emit Seeked(wanted);
}

void Player::SetVolume(double volume) {
  queue_.Media().SetVolume(std::clamp(volume, 0.0, 1.0));
  if (!ended_) settings_.SetVolume(Volume());
  emit Changed();
}

void Player::SetMuted(bool muted) {
  queue_.Media().SetMuted(muted);
  if (!ended_) settings_.SetMuted(muted);
  emit Changed();
}

void Player::SetDelay(int milliseconds) {
  const std::optional<SoundOutput> output = Output();
  if (!output || ended_) return;
  settings_.SetDelay(*output, milliseconds);
  FollowServer();
}

void Player::SetOthersTrack(const OthersTrack& track) {
  if (track == others_) return;
  others_ = track;
  SendOthersTitles();
  AnnounceChange();
}

// --- How the parts follow each other ------------------------------------------------------------

void Player::Tick() {
  server_.Poll();
  if (server_.Changes() != serverChanges_) FollowServer();
  queue_.Poll();
  listening_.Poll();
  if (ended_) return;
  feed_.Idle();
  SetPace();
}

int Player::NeededPace() const {
  if (mode_ == Mode::Playing) return queue_.IsPaused() ? kIdlePace : kSoundPace;
  if (mode_ == Mode::Idle) return kIdlePace;
  switch (listening_.State()) {
  case CaptureSource::State::Connecting:
  case CaptureSource::State::Listening:
    return kSoundPace;
  case CaptureSource::State::NoSignal:
  case CaptureSource::State::Muted:
    return kSilencePace;
  default:
    return kIdlePace;
  }
}

void Player::SetPace() {
  const int pace = NeededPace();
  if (timer_.isActive() && timer_.interval() == pace) return;
  timer_.setTimerType(pace == kSoundPace ? Qt::PreciseTimer : Qt::CoarseTimer);
  timer_.start(pace);
}

void Player::SetMode(Mode mode) {
  if (mode_ == mode) return;
  mode_ = mode;
  feed_.Stop();
  if (mode_ != Mode::Listening) listening_.End();
  if (mode_ != Mode::Playing) queue_.Stop();
  emit LevelChanged(0);
}

void Player::FollowServer() {
  serverChanges_ = server_.Changes();
  if (const std::optional<SoundOutput> output = Output()) {
    delay_ = settings_.Delay(*output);
    queue_.Media().SetOffset(delay_);
    listening_.SetOffset(delay_);
  }
  AnnounceChange();
}

void Player::FollowQueue() {
  if (ended_) return;
  if (queue_.IsActive()) SetMode(Mode::Playing);
  if (mode_ != Mode::Playing) return;
  if (!queue_.IsActive()) {
    SetMode(Mode::Idle);
  } else if (queue_.IsOpening()) {
    feed_.Stop();
  } else {
    const auto& radio = queue_.Radio();
    const MediaTags& tags = queue_.Tags();
    feed_.Play({.title = radio && !radio->station.empty() ? radio->station : tags.title,
                .artist = tags.artist,
                .stream = radio ? std::optional(radio->title) : std::nullopt});
    queue_.IsPaused() || queue_.IsReconnecting() ? feed_.Pause() : feed_.Unpause();
  }
  if (queue_.IsPaused()) emit LevelChanged(0);
  AnnounceChange();
}

void Player::FollowListening() {
  if (ended_ || mode_ != Mode::Listening) return;
  FollowServer(); // another source may belong to another output
  SendOthersTitles();
}

void Player::SendOthersTitles() {
  if (ended_ || mode_ != Mode::Listening) return;
  if (!others_.title.isEmpty()) {
    feed_.Play({.title = others_.title.toStdString(),
                .artist = others_.artist.toStdString(),
                .stream = std::nullopt});
  } else if (listening_.State() == CaptureSource::State::Listening) {
    feed_.Play();
  }
}

void Player::AnnounceChange() {
  SetPace();
  emit Changed();
  const QString title = Title();
  const QString artist = Artist();
  if (title == announcedTitle_ && artist == announcedArtist_) return;
  announcedTitle_ = title;
  announcedArtist_ = artist;
  emit TrackChanged(title, artist);
}

} // namespace halvenor
