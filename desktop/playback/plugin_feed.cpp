#include "desktop/playback/plugin_feed.h"

#include "host/track_records.h"

namespace halvenor {
namespace {

constexpr qint64 kIdleMilliseconds = 95; // a little less than the slowest tick

} // namespace

PluginFeed::PluginFeed(PluginHost& plugin) : plugin_(plugin) {
  sinceMessage_.start();
}

void PluginFeed::Play() {
  if (state_ == State::Stopped) plugin_.Play(nullptr, nullptr);
  if (state_ == State::Paused) plugin_.Unpause();
  state_ = State::Playing;
}

void PluginFeed::Play(const FeedTitles& titles) {
  TrackRecords records = MakeTrackRecords(titles.title, titles.artist, titles.stream);
  const bool isStopped = state_ == State::Stopped;
  // 'vply' without a track leaves the line of the one before on the screen; 'ctrk' hides it.
  if (isStopped ? !records.track : titles != titles_)
    plugin_.ChangeTrack(records.Track(), records.Stream());
  if (isStopped) plugin_.Play(records.Track(), records.Stream());
  if (isStopped) state_ = State::Playing;
  titles_ = titles;
}

void PluginFeed::Pause() {
  if (state_ != State::Playing) return;
  plugin_.Pause();
  state_ = State::Paused;
}

void PluginFeed::Unpause() {
  if (state_ != State::Paused) return;
  plugin_.Unpause();
  state_ = State::Playing;
}

void PluginFeed::Stop() {
  if (state_ != State::Stopped) plugin_.Stop();
  state_ = State::Stopped;
  titles_.reset();
}

void PluginFeed::Record(const RenderVisualData& record) {
  RenderVisualData copy = record;
  plugin_.RenderData(&copy, records_++);
  sinceMessage_.start();
}

void PluginFeed::Idle() {
  if (sinceMessage_.elapsed() < kIdleMilliseconds) return;
  plugin_.Idle();
  sinceMessage_.start();
}

} // namespace halvenor
