#include "desktop/player.h"

#include "host/media_player.h"
#include "host/track_records.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QSettings>
#include <QtCore/QTimer>

namespace halvenor {
namespace {

constexpr int kPollMilliseconds = 10;
constexpr qint64 kIdleMilliseconds = 100;

} // namespace

struct Player::Impl final : MediaPlayer::Listener {
  Impl(Player& player, PluginHost& pluginHost) : self(player), plugin(pluginHost), media(*this) {}

  void Started(const MediaTags& tags) override;
  void TagsChanged(const MediaTags& tags) override;
  void Record(const RenderVisualData& record) override;
  void Ended() override;
  void Failed(const std::string& error) override;
  void Tick();
  void TellStop();
  void TellTrack();

  Player& self;
  PluginHost& plugin;
  MediaPlayer media;
  MediaTags tags;
  QTimer timer;
  QElapsedTimer sinceMessage; // since the last record or idle message
  std::uint32_t records = 0;
  bool playing = false;
};

void Player::Impl::Tick() {
  media.Poll();
  if (sinceMessage.elapsed() < kIdleMilliseconds) return;
  plugin.Idle();
  sinceMessage.start();
}

void Player::Impl::TellStop() {
  if (playing) plugin.Stop();
  playing = false;
}

void Player::Impl::TellTrack() {
  emit self.Changed();
  emit self.TrackChanged(self.Title(), self.Artist());
}

void Player::Impl::Started(const MediaTags& now) {
  tags = now;
  playing = true;
  TrackInfo track = MakeTrackInfo(tags.title, tags.artist);
  plugin.Play(&track, nullptr);
  TellTrack();
}

void Player::Impl::TagsChanged(const MediaTags& now) {
  tags = now;
  TrackInfo track = MakeTrackInfo(tags.title, tags.artist);
  plugin.ChangeTrack(&track, nullptr);
  TellTrack();
}

void Player::Impl::Record(const RenderVisualData& record) {
  RenderVisualData copy = record;
  plugin.RenderData(&copy, records++);
  sinceMessage.start();
}

void Player::Impl::Ended() {
  TellStop();
  emit self.Changed();
}

void Player::Impl::Failed(const std::string& error) {
  TellStop();
  emit self.Changed();
  emit self.Reported(QString::fromStdString(error));
}

Player::Player(PluginHost& plugin, QSettings&) : impl_(std::make_unique<Impl>(*this, plugin)) {
  connect(&impl_->timer, &QTimer::timeout, this, [this] { impl_->Tick(); });
  impl_->sinceMessage.start();
  impl_->timer.setTimerType(Qt::PreciseTimer);
  impl_->timer.start(kPollMilliseconds);
}

Player::~Player() = default;

void Player::End() {
  impl_->timer.stop();
  Stop();
}

Player::Mode Player::CurrentMode() const {
  return impl_->media.CurrentState() == MediaPlayer::State::Stopped ? Mode::Idle : Mode::Playing;
}

Player::Signal Player::CurrentSignal() const {
  if (CurrentMode() == Mode::Idle) return Signal::Ended;
  return impl_->playing ? Signal::Sound : Signal::Connecting;
}

QString Player::SourceName() const {
  return {};
}

QString Player::StateWords() const {
  return {};
}

QString Player::Title() const {
  return QString::fromStdString(impl_->tags.title);
}

QString Player::Artist() const {
  return QString::fromStdString(impl_->tags.artist);
}

std::vector<Player::Source> Player::Sources() const {
  return {};
}

QString Player::ChosenSource() const {
  return {};
}

QStringList Player::Queue() const {
  return {};
}

int Player::QueueIndex() const {
  return -1;
}

bool Player::CanGoNext() const {
  return false;
}

bool Player::CanGoPrevious() const {
  return false;
}

bool Player::CanSeek() const {
  return false;
}

bool Player::IsPaused() const {
  return impl_->media.CurrentState() == MediaPlayer::State::Paused;
}

double Player::Position() const {
  return impl_->media.Position();
}

std::optional<double> Player::Length() const {
  return impl_->media.Length();
}

double Player::Volume() const {
  return 1;
}

bool Player::IsMuted() const {
  return false;
}

int Player::Offset() const {
  return 0;
}

QString Player::OutputDevice() const {
  return {};
}

void Player::Listen(const QString&) {}

void Player::Open(const QStringList& media) {
  impl_->TellStop();
  if (!media.isEmpty()) impl_->media.Open(media.front().toStdString());
}

void Player::Enqueue(const QStringList&) {}

void Player::PlayEntry(int) {}

void Player::Play() {
  impl_->media.Play();
}

void Player::Pause() {
  impl_->media.Pause();
}

void Player::PlayPause() {
  IsPaused() ? Play() : Pause();
}

void Player::Stop() {
  impl_->TellStop();
  impl_->media.Stop();
}

void Player::Next() {}

void Player::Previous() {}

void Player::Seek(double) {}

void Player::SetVolume(double) {}

void Player::SetMuted(bool) {}

void Player::SetOffset(int) {}

} // namespace halvenor
