#include "audio/playback.h"

#include "files/translated.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace halvenor {

namespace {

using namespace gst_media;
using namespace std::chrono_literals;

constexpr double kRecordSeconds = kDeliveryMilliseconds / 1000.0;
constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max();

/// After a long absence of the host records that are older than this are not told any more.
constexpr std::int64_t kStale = 200 * GST_MSECOND;

constexpr double kAboutToEnd = 5;   // seconds before the end
constexpr double kLongest = 1e6;    // seconds, of what does not tell its length
constexpr auto kClosePatience = 2s; // for the device to be closed
constexpr auto kStall = 10s;        // without a byte, and without sound
constexpr auto kRecovered = 10s;    // of radio, and the pauses are short again
constexpr std::array kPauses{1s, 2s, 4s, 8s, 16s, 30s};

} // namespace

Playback::Playback(Listener& listener, std::string audioSink, SoundServer* server)
    : calls_(listener), output_(std::move(audioSink), server) {}

Playback::~Playback() {
  pipeline_.reset();
  worker_.Finish(kClosePatience);
}

// --- From phase to phase ------------------------------------------------------------------------

/// Ends what plays, without a word.
void Playback::Leave() {
  phase_ = Phase::Idle;
  pipeline_.reset();
  applied_.reset();
  buffering_ = false;
  missingDecoder_.clear();
  track_.number = 0;
  track_.end = End::Far;
  track_.lengthSought = {};
  decoded_.reset();
  next_.reset();
  heard_ = 0;
}

void Playback::WaitToBegin(double at) {
  Leave();
  phase_ = Phase::Waiting;
  beginAt_ = position_ = toldUntil_ = at;
  begun_ = Clock::now();
}

void Playback::Begin() {
  const std::optional<std::string> sink = output_.Sink(begun_);
  if (!sink) return;
  begun_ = Clock::now();
  std::string error;
  track_.medium = gst_media::Start(error) ? Find(name_, error) : std::nullopt;
  if (track_.medium) pipeline_ = GaplessPipeline::Make(worker_, *track_.medium, *sink, error);
  if (!pipeline_) {
    Fail(error);
    return;
  }
  phase_ = Phase::Opening;
  track_.Begin();
  ApplyVolume();
  ApplyWanted();
}

void Playback::Fail(const std::string& text) {
  Leave();
  calls_.Add([this, text](Listener& listener) {
    wanted_ = stateTold_ = State::Stopped;
    listener.Failed(text);
  });
}

void Playback::Lose(const std::string& reason) {
  Leave();
  phase_ = Phase::Lost;
  startTold_ = StartTold::No;
  retryAt_ = Clock::now() + kPauses[std::min(tries_, kPauses.size() - 1)];
  ++tries_;
  calls_.Add([text = About(name_, reason)](Listener& listener) { listener.Reconnecting(text); });
}

void Playback::SetWanted(State wanted) {
  if (wanted_ == wanted) return;
  wanted_ = wanted;
  begun_ = Clock::now(); // the time without bytes counts from here
  ApplyWanted();
}

/// One change at a time: GStreamer may forget to play when a pipeline that is on its way there is
/// told to pause and to play again. So it is not sent there before the first sound is there.
void Playback::ApplyWanted() {
  if (!pipeline_) return;
  const bool plays = wanted_ == State::Playing && phase_ == Phase::Sounding && !buffering_;
  if (std::exchange(applied_, plays) == plays) return;
  plays ? pipeline_->Play() : pipeline_->Pause();
}

void Playback::TellState(State reached) {
  calls_.Add([this, reached](Listener& listener) {
    if (reached != wanted_ || std::exchange(stateTold_, reached) == reached) return;
    listener.StateChanged(reached);
  });
}

// --- What is asked for --------------------------------------------------------------------------

void Playback::Open(const std::string& medium) {
  name_ = medium;
  calls_.Clear();
  output_.Reset();
  startTold_ = StartTold::Never;
  tries_ = 0;
  seekable_ = true;
  track_.length.reset();
  WaitToBegin(0);
  wanted_ = stateTold_ = State::Playing;
}

void Playback::SetNext(const std::string& medium) {
  if (!pipeline_) return;
  DropNext();
  if (medium.empty() || track_.end == End::Released || track_.IsNetwork()) return;
  std::string error;
  const std::optional<Medium> found = Find(medium, error);
  if (!found || gst_media::IsNetwork(found->uri)) return;
  if (const std::optional<int> track = pipeline_->Join(*found))
    next_ = Next{*track, medium, *found};
}

void Playback::DropNext() {
  if (next_) pipeline_->Remove(next_->track);
  next_.reset();
}

void Playback::Play() {
  if (wanted_ != State::Stopped) {
    SetWanted(State::Playing);
  } else if (!name_.empty()) {
    Open(std::string(name_));
  }
}

void Playback::Pause() {
  if (wanted_ == State::Stopped) return;
  calls_.Forget(Topic::Record);
  SetWanted(State::Paused);
}

void Playback::Stop() {
  Leave();
  calls_.Clear();
  wanted_ = stateTold_ = State::Stopped;
  position_ = toldUntil_ = 0;
  track_.length.reset();
}

void Playback::Seek(double seconds) {
  if (std::isnan(seconds) || !CanSeek()) return;
  const double wanted = std::clamp(seconds, 0.0, Length().value_or(kLongest));
  calls_.Forget(Topic::Record);
  calls_.Forget(Topic::AboutToEnd);
  if (track_.end == End::Released || IsDecoded()) { // it has gone by
    WaitToBegin(wanted);
    return;
  }
  DropNext();
  track_.end = End::Far;
  position_ = toldUntil_ = wanted;
  heard_ = 0;
  pipeline_->Seek(wanted);
}

void Playback::SetVolume(double volume) {
  if (std::isnan(volume)) return;
  volume_ = std::clamp(volume, 0.0, 1.0);
  ApplyVolume();
}

void Playback::SetMuted(bool muted) {
  muted_ = muted;
  ApplyVolume();
}

void Playback::ApplyVolume() {
  if (pipeline_) pipeline_->SetVolume(volume_ * volume_ * volume_, muted_);
}

void Playback::SetOffset(int milliseconds) {
  offset_ = std::clamp(milliseconds, -kMostOffset, kMostOffset) * std::int64_t{GST_MSECOND};
}

double Playback::Position() {
  FindPosition(); // else the last that was known
  return position_;
}

std::optional<double> Playback::Length() const {
  if (track_.length || !pipeline_ || track_.end != End::Far) return track_.length;
  return pipeline_->Length();
}

bool Playback::CanSeek() const {
  return phase_ == Phase::Sounding && seekable_ && !IsRadio() && pipeline_->CanSeek();
}

// --- Looking around -----------------------------------------------------------------------------

void Playback::Poll() {
  output_.Poll();
  if (pipeline_ && output_.IsBack()) WaitToBegin(toldUntil_);
  if (phase_ == Phase::Lost && wanted_ == State::Playing && Clock::now() >= retryAt_)
    WaitToBegin(IsRadio() || !seekable_ ? 0 : toldUntil_);
  if (phase_ == Phase::Lost) TellState(wanted_); // there is no pipeline that could reach it
  if (phase_ == Phase::Waiting) Begin();
  ReleaseEnd();
  HandleBus(); // first: a device that has failed may say that it is anywhere
  if (phase_ == Phase::Sounding) FollowTrack();
  if (FindPosition()) TellRecords(heard_ - offset_);
  WatchStream();
  calls_.Deliver();
}

void Playback::HandleBus() {
  while (pipeline_) {
    const Message message(pipeline_->NextMessage());
    if (!message) break;
    Handle(message.get());
  }
  ApplyWanted();
}

void Playback::Handle(GstMessage* message) {
  if (ExplainMissingDecoder(message, missingDecoder_)) return;
  switch (GST_MESSAGE_TYPE(message)) {
  case GST_MESSAGE_ERROR:
    HandleError(message);
    break;
  case GST_MESSAGE_STATE_CHANGED:
    if (pipeline_->IsFromPipeline(message)) HandleState(message);
    break;
  case GST_MESSAGE_BUFFERING:
    HandleBuffering(message);
    break;
  case GST_MESSAGE_APPLICATION:
    // What is decoded before `beginAt_` is sought will be decoded again from there.
    if (phase_ == Phase::Opening && beginAt_ > 0) break;
    if (const auto which = pipeline_->DecodedTrack(message))
      decoded_ = Decoded{*which, pipeline_->TrackLength(*which)};
    break;
  case GST_MESSAGE_EOS:
    HandleEnd();
    break;
  default:
    break;
  }
}

void Playback::HandleError(GstMessage* message) {
  if (pipeline_->IsFromRemoved(message)) return;
  if (pipeline_->IsFromSink(message) && output_.NoteFailure()) {
    WaitToBegin(toldUntil_);
    return;
  }
  if (next_ && pipeline_->IsFromTrack(message, next_->track)) {
    DropNext();
    return;
  }
  std::string text = missingDecoder_.empty() ? Explain(message) : missingDecoder_;
  if (IsSeekRefused(message)) seekable_ = false;
  if (pipeline_->MediaType(track_.number) == "text/html")
    text = Translated("halvenor::Audio", "is a web page, not sound");
  if (startTold_ != StartTold::Never && track_.IsNetwork()) {
    Lose(text);
  } else {
    Fail(About(name_, text));
  }
}

void Playback::HandleState(GstMessage* message) {
  GstState reached = GST_STATE_NULL;
  GstState pending = GST_STATE_NULL;
  gst_message_parse_state_changed(message, nullptr, &reached, &pending);
  if (phase_ == Phase::Opening && reached >= GST_STATE_PAUSED) HandleFirstSound();
  if (reached == GST_STATE_PLAYING) TellState(State::Playing);
  if (reached == GST_STATE_PAUSED && pending == GST_STATE_VOID_PENDING) TellState(State::Paused);
}

/// Radio waits until there is enough of it.
void Playback::HandleBuffering(GstMessage* message) {
  constexpr int kEnough = 100;
  int percent = 0;
  gst_message_parse_buffering(message, &percent);
  buffering_ = percent < kEnough;
}

void Playback::HandleFirstSound() {
  phase_ = Phase::Sounding;
  if (beginAt_ > 0) pipeline_->Seek(beginAt_);
  track_.TakeNewTags(*pipeline_);
  if (std::exchange(startTold_, StartTold::Yes) == StartTold::Yes) return; // the device had failed
  calls_.Add([tags = track_.tags](Listener& listener) { listener.Started(tags); });
  if (!IsRadio()) return;
  calls_.Add([stream = track_.stream](Listener& listener) { listener.StreamTagsChanged(stream); });
}

void Playback::HandleEnd() {
  TellRecords(kForever);
  const bool early =
      track_.IsNetwork() && track_.length && position_ + kAboutToEnd < *track_.length;
  if (IsRadio() || early) {
    Lose(Translated("halvenor::Audio", "the stream has ended"));
    return;
  }
  TellMissingSound();
  Leave();
  calls_.Add([this](Listener& listener) {
    wanted_ = stateTold_ = State::Stopped;
    listener.Ended();
  });
}

// --- The track that is heard --------------------------------------------------------------------

void Playback::FollowTrack() {
  TellNewTags();
  SwitchTrack();
  track_.FindLength(*pipeline_);
  const bool near = track_.length && position_ > *track_.length - kAboutToEnd;
  if (track_.end != End::Far || !(IsDecoded() || near)) return;
  track_.end = End::Announced;
  if (!track_.IsNetwork())
    calls_.Add([](Listener& listener) { listener.AboutToEnd(); }, Topic::AboutToEnd);
}

/// Once the listener has had the time to name the next medium.
void Playback::ReleaseEnd() {
  if (!pipeline_ || track_.end != End::Announced || !IsDecoded()) return;
  track_.end = End::Released;
  pipeline_->ReleaseEnd(track_.number);
}

/// The next track may be heard already.
void Playback::SwitchTrack() {
  const std::optional<std::int64_t> now = pipeline_->HeardNow();
  const auto place = now ? pipeline_->Tap().At(*now) : std::nullopt;
  if (!next_ || !place || place->track != next_->track) return;
  TellMissingSound();
  pipeline_->Remove(track_.number);
  name_ = next_->name;
  track_ = {};
  track_.number = next_->track;
  track_.medium = next_->medium;
  track_.Begin();
  next_.reset();
  position_ = toldUntil_ = 0;
  track_.TakeNewTags(*pipeline_);
  calls_.Add([tags = track_.tags](Listener& listener) { listener.Started(tags); });
}

void Playback::TellMissingSound() {
  const double length = IsDecoded() ? decoded_->length.value_or(0) : 0;
  if (const auto text = track_.MissingSound(*pipeline_, length))
    calls_.Add([text = *text](Listener& listener) { listener.SoundMissing(text); });
}

void Playback::TellNewTags() {
  const MediaTags before = track_.tags;
  const StreamTags streamBefore = track_.stream;
  if (!track_.TakeNewTags(*pipeline_)) return;
  if (track_.tags != before)
    calls_.Add([tags = track_.tags](Listener& listener) { listener.TagsChanged(tags); });
  if (track_.stream != streamBefore && IsRadio())
    calls_.Add(
        [stream = track_.stream](Listener& listener) { listener.StreamTagsChanged(stream); });
}

/// Whether it is known what is heard at this moment.
bool Playback::FindPosition() {
  if (phase_ != Phase::Sounding) return false;
  const std::optional<std::int64_t> now = pipeline_->HeardNow();
  const auto place = now ? pipeline_->Tap().At(*now) : std::nullopt;
  if (!place || place->track != track_.number) return false;
  heard_ = *now;
  position_ = static_cast<double>(place->position) / kSecond;
  return true;
}

void Playback::TellRecords(std::int64_t until) {
  if (wanted_ != State::Playing) return;
  const std::int64_t from = heard_ - offset_ - kStale;
  while (const std::optional<AnalysisTap::Timed> timed = pipeline_->Tap().Take(from, until)) {
    const double age = static_cast<double>(heard_ - timed->time) / kSecond;
    toldUntil_ = std::max(0.0, position_ - age + kRecordSeconds);
    lastTold_ = Clock::now();
    calls_.Add([record = timed->record](Listener& listener) { listener.Record(record); },
               Topic::Record);
  }
}

/// Whatever comes from the network may stall.
void Playback::WatchStream() {
  if (!pipeline_ || wanted_ != State::Playing || !track_.IsNetwork() || decoded_) return;
  const Clock::time_point now = Clock::now();
  if (phase_ == Phase::Sounding && now - begun_ > kRecovered) tries_ = 0;
  // Nothing needs to come while there is enough to play, or all of it.
  if (now - std::max({begun_, lastTold_, pipeline_->LastBytes()}) < kStall) return;
  if (startTold_ != StartTold::Never) {
    Lose(Translated("halvenor::Audio", "nothing came for 10 seconds"));
  } else {
    Fail(About(name_, Translated("halvenor::Audio", "does not answer")));
  }
}

} // namespace halvenor
