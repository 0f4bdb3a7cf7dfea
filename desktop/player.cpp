#include "desktop/player.h"

#include "desktop/player_impl.h"
#include "desktop/shown_text.h"

#include <algorithm>

namespace halvenor {
namespace {

constexpr double kRestartSeconds = 3; // after these, "previous" means this one from its start

} // namespace

Player::Player(PluginHost& plugin, QSettings& settings)
    : impl_(std::make_unique<Impl>(*this, plugin, settings)) {}

Player::~Player() = default;

void Player::End() {
  if (impl_->ended) return;
  impl_->SetMode(Mode::Idle);
  impl_->timer.stop();
  impl_->ended = true;
}

Player::Mode Player::CurrentMode() const {
  return impl_->mode;
}

Player::Signal Player::CurrentSignal() const {
  const QueuePlayer& playing = impl_->playing;
  if (impl_->mode == Mode::Idle) return Signal::Ended;
  if (impl_->mode == Mode::Playing) {
    if (playing.IsOpening() || playing.IsReconnecting()) return Signal::Connecting;
    if (playing.IsPaused()) return Signal::Paused;
    if (playing.IsStuck()) return Signal::Waiting;
    return playing.IsSilent() ? Signal::Silence : Signal::Sound;
  }
  switch (impl_->listening.State()) {
  case CaptureSource::State::Listening:
    return Signal::Sound;
  case CaptureSource::State::NoSignal:
    return Signal::Silence;
  case CaptureSource::State::DeviceGone:
  case CaptureSource::State::ServerGone:
    return Signal::Waiting;
  default:
    return Signal::Connecting;
  }
}

QString Player::SourceName() const {
  const QueuePlayer& playing = impl_->playing;
  if (impl_->mode == Mode::Listening) return impl_->listening.SourceDescription();
  const QueueEntry* entry = playing.Queue().FromCurrent(0);
  if (impl_->mode == Mode::Idle || !entry) return {};
  const auto& radio = playing.Radio();
  return ShownLine(radio && !radio->station.empty() ? radio->station : entry->title);
}

QString Player::StateWords() const {
  if (impl_->mode == Mode::Listening) {
    QString words = impl_->listening.StateWords();
    if (CurrentSignal() == Signal::Silence && impl_->others.isPaused)
      return tr("%1, %2 is paused").arg(words, impl_->others.player);
    return words;
  }
  switch (CurrentSignal()) {
  case Signal::Connecting:
    return impl_->playing.IsReconnecting() ? tr("connection lost, trying again") : tr("opening");
  case Signal::Paused:
    return tr("paused");
  case Signal::Waiting:
    return tr("nothing comes, waiting");
  case Signal::Silence:
    return tr("silence");
  case Signal::Ended:
    return tr("nothing plays");
  default:
    return {};
  }
}

QString Player::Title() const {
  const QueuePlayer& playing = impl_->playing;
  if (impl_->mode == Mode::Listening) return impl_->others.title;
  if (impl_->mode == Mode::Idle) return {};
  const auto& radio = playing.Radio();
  return ShownLine(radio && !radio->title.empty() ? radio->title : playing.Tags().title);
}

QString Player::Artist() const {
  if (impl_->mode == Mode::Listening) return impl_->others.artist;
  return impl_->mode == Mode::Idle ? QString() : ShownLine(impl_->playing.Tags().artist);
}

std::vector<Player::Source> Player::Sources() const {
  std::vector<Source> sources;
  for (const SoundSource& source : impl_->server.Sources()) {
    const bool isMicrophone = source.kind == SoundSource::Kind::Microphone;
    sources.push_back({.name = QString::fromStdString(source.name),
                       .description = ShownLine(source.description),
                       .isMicrophone = isMicrophone,
                       .isDefault = source.isDefault && !isMicrophone});
  }
  return sources;
}

QString Player::ChosenSource() const {
  return impl_->listening.ChosenSource();
}

int Player::QueueIndex() const {
  return impl_->mode == Mode::Playing ? impl_->playing.Queue().Current() : -1;
}

bool Player::CanGoNext() const {
  return impl_->mode == Mode::Playing && impl_->playing.Queue().FromCurrent(1);
}

bool Player::CanGoPrevious() const {
  return impl_->mode == Mode::Playing && impl_->playing.Queue().FromCurrent(-1);
}

bool Player::CanSeek() const {
  return impl_->mode == Mode::Playing && impl_->playing.Media().CanSeek();
}

bool Player::CanPlay() const {
  return impl_->playing.Queue().Current() >= 0;
}

bool Player::IsPaused() const {
  return impl_->mode == Mode::Playing && impl_->playing.IsPaused();
}

double Player::Position() const {
  return impl_->mode == Mode::Playing ? impl_->playing.Media().Position() : 0;
}

std::optional<double> Player::Length() const {
  if (impl_->mode != Mode::Playing) return std::nullopt;
  return impl_->playing.Media().Length();
}

std::string Player::Medium() const {
  const QueueEntry* entry = impl_->playing.Queue().FromCurrent(0);
  return impl_->mode == Mode::Playing && entry ? entry->medium : std::string();
}

unsigned Player::TrackNumber() const {
  return impl_->playing.EntryNumber();
}

QString Player::Album() const {
  if (impl_->mode != Mode::Playing) return {};
  const auto& radio = impl_->playing.Radio();
  return ShownLine(radio ? radio->station : impl_->playing.Tags().album);
}

double Player::Volume() const {
  return impl_->playing.Media().Volume();
}

bool Player::IsMuted() const {
  return impl_->playing.Media().IsMuted();
}

int Player::Offset() const {
  return impl_->offset;
}

QString Player::OutputDevice() const {
  const std::optional<SoundOutput> output = impl_->Output();
  return output ? ShownLine(output->description) : QString();
}

void Player::SetOthersTrack(const OthersTrack& track) {
  if (track == impl_->others) return;
  impl_->others = track;
  impl_->TellListeningTitles();
  impl_->TellChange();
}

// --- Commands -----------------------------------------------------------------------------------

void Player::Listen(const QString& source) {
  if (impl_->ended) return;
  impl_->SetMode(Mode::Listening);
  impl_->listening.Begin(source);
  impl_->FollowListening();
}

void Player::Open(const QStringList& media) {
  if (!impl_->ended && !media.isEmpty()) impl_->playing.Open(media);
}

void Player::PlayEntry(int index) {
  if (!impl_->ended) impl_->playing.GoTo(index);
}

void Player::Play() {
  if (!impl_->ended) impl_->playing.Play();
}

void Player::Pause() {
  if (impl_->Is(Mode::Playing)) impl_->playing.Pause();
}

void Player::PlayPause() {
  if (impl_->mode == Mode::Playing && !IsPaused()) {
    Pause();
  } else {
    Play();
  }
}

void Player::Stop() {
  if (impl_->ended) return;
  impl_->SetMode(Mode::Idle);
  impl_->TellChange();
}

void Player::Next() {
  if (CanGoNext()) PlayEntry(QueueIndex() + 1);
}

void Player::Previous() {
  if (CanGoPrevious() && Position() < kRestartSeconds) {
    PlayEntry(QueueIndex() - 1);
  } else {
    Seek(0);
  }
}

void Player::Seek(double seconds) {
  if (!CanSeek()) return;
  const double end = Length().value_or(seconds);
  impl_->playing.Seek(seconds);
  emit Seeked(std::clamp(seconds, 0.0, std::max(end, 0.0)));
}

void Player::SetVolume(double volume) {
  impl_->playing.Media().SetVolume(std::clamp(volume, 0.0, 1.0));
  impl_->Keep(kVolumeKey, Volume());
  emit Changed();
}

void Player::SetMuted(bool muted) {
  impl_->playing.Media().SetMuted(muted);
  impl_->Keep(kMutedKey, muted);
  emit Changed();
}

void Player::SetOffset(int milliseconds) {
  impl_->SetOffset(milliseconds);
}

} // namespace halvenor