#include "desktop/playback.h"

#include "host/track_records.h"

namespace halvenor {
namespace {

constexpr int kPollMilliseconds = 10;
constexpr qint64 kIdleMilliseconds = 100;

} // namespace

Playback::Playback(PluginHost& plugin) : plugin_(plugin), player_(*this) {
  connect(&timer_, &QTimer::timeout, this, &Playback::Tick);
  sinceMessage_.start();
  timer_.start(std::chrono::milliseconds(kPollMilliseconds));
  timer_.setTimerType(Qt::PreciseTimer);
}

void Playback::Open(const std::string& medium) {
  Stop();
  player_.Open(medium);
}

void Playback::End() {
  timer_.stop();
  Stop();
  player_.Stop();
}

void Playback::Tick() {
  player_.Poll();
  if (sinceMessage_.elapsed() < kIdleMilliseconds) return;
  plugin_.Idle();
  sinceMessage_.start();
}

void Playback::Stop() {
  if (playing_) plugin_.Stop();
  playing_ = false;
}

void Playback::Started(const MediaTags& tags) {
  playing_ = true;
  TrackInfo track = MakeTrackInfo(tags.title, tags.artist);
  plugin_.Play(&track, nullptr);
  emit TrackChanged(QString::fromStdString(tags.title), QString::fromStdString(tags.artist));
}

void Playback::TagsChanged(const MediaTags& tags) {
  TrackInfo track = MakeTrackInfo(tags.title, tags.artist);
  plugin_.ChangeTrack(&track, nullptr);
  emit TrackChanged(QString::fromStdString(tags.title), QString::fromStdString(tags.artist));
}

void Playback::Record(const RenderVisualData& record) {
  RenderVisualData copy = record;
  plugin_.RenderData(&copy, records_++);
  sinceMessage_.start();
}

void Playback::Ended() {
  Stop();
}

void Playback::Failed(const std::string& error) {
  Stop();
  emit PlayFailed(QString::fromStdString(error));
}

} // namespace halvenor
