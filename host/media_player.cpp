#include "host/media_player.h"

#include "host/gst_media.h"
#include "host/playing_pipeline.h"
#include "host/sound_server.h"
#include "host/worker.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <limits>
#include <utility>

namespace halvenor {

namespace {

using namespace gst_media;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr double kSecond = static_cast<double>(GST_SECOND);
constexpr double kRecordSeconds = kDeliveryMilliseconds / 1000.0;
constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max();

/// After a long absence of the host records that are older than this are not told any more.
constexpr std::int64_t kStale = 200 * GST_MSECOND;

constexpr double kAboutToEnd = 5;    // seconds before the end
constexpr double kLongest = 1e6;     // seconds, of what does not tell its length
constexpr auto kServerPatience = 2s; // for the first answer of the sound server
constexpr auto kClosePatience = 2s;  // for the device to be let go of
constexpr auto kStall = 10s;         // without a byte, and without sound
constexpr auto kRecovered = 10s;     // of radio, and the pauses are short again
constexpr std::array kPauses{1s, 2s, 4s, 8s, 16s, 30s};

constexpr const char* kServerSink =
    "pulsesink client-name=Halvenor stream-properties=\"props,media.role=music\"";
constexpr const char* kCardSink = "alsasink";
constexpr const char* kNoSink = "fakesink sync=true";

bool HasSoundCard() {
  std::ifstream list("/proc/asound/pcm");
  for (std::string line; std::getline(list, line);)
    if (line.find("playback") != std::string::npos) return true;
  return false;
}

} // namespace

struct MediaPlayer::Impl {
  Impl(Listener& theListener, std::string sink, SoundServer* theServer)
      : listener(theListener), audioSink(std::move(sink)),
        ownServer(theServer == nullptr && audioSink.empty() ? std::make_unique<SoundServer>()
                                                            : nullptr),
        server(theServer != nullptr ? theServer : ownServer.get()) {}

  Listener& listener;
  const std::string audioSink;
  const std::unique_ptr<SoundServer> ownServer;
  SoundServer* const server; // null only where `audioSink` is given
  Worker worker;

  std::string name; // of the last medium asked for
  std::optional<Medium> medium;
  MediaTags tags;
  StreamTags stream;
  State state = State::Stopped; // wanted
  State told = State::Stopped;
  double volume = 1;
  bool muted = false;
  std::int64_t offset = 0; // nanoseconds

  // Grows whenever something else is to be played: what a loop was about is gone then.
  std::uint64_t session = 0;
  std::optional<double> beginAt; // to begin there as soon as the server is known to be there or not
  Clock::time_point begun;
  Clock::time_point lastTold; // when a record was
  std::unique_ptr<PlayingPipeline> pipeline;
  double resumeAt = 0;     // seconds; where to go once the first sound is there
  bool started = false;    // the first sound is there
  bool tellStart = false;  // it is news to the listener
  bool everPlayed = false; // the medium that was asked for
  bool seekable = true;    // unless its server refused
  bool buffering = false;
  std::optional<bool> applied; // whether the pipeline was told to play
  std::string missing;         // what GStreamer lacks for this medium

  bool silent = false; // there is no device, or it has failed
  std::uint64_t serverChanges = 0;

  int track = 0; // of the pipeline
  struct Next {
    int track;
    std::string name;
    Medium medium;
  };
  std::optional<Next> next;
  bool asked = false;              // for the next one
  std::optional<int> decodedTrack; // the last that was decoded to its end
  bool released = false;           // its end takes effect
  std::optional<double> length;    // of the track; still known while it is tried again
  Clock::time_point lengthSought{};

  std::int64_t heard = 0; // running time, nanoseconds
  double position = 0;    // seconds, when last asked
  double toldUntil = 0;   // seconds; the records before have been told

  std::optional<Clock::time_point> retryAt;
  std::size_t tries = 0;
  std::string failure; // to be told by the next `Poll`

  [[nodiscard]] double Linear() const { return volume * volume * volume; }
  void Leave();
  void BeginSoon(double at);
  void Begin();
  [[nodiscard]] std::optional<std::string> SinkDescription();
  void WatchServer();
  void SetState(State wanted);
  void ApplyState();
  void TellState(State reached);
  void Fail(const std::string& text);

  void HandleBus();
  void Handle(GstMessage* message);
  void HandleError(GstMessage* message);
  void HandleState(GstMessage* message);
  void HandleBuffering(GstMessage* message);
  void HandleDecoded(int which);
  void HandleEnd();
  void Start();
  void TakeNewTags();
  void TellNewTags();

  void FindLength();
  bool FindPosition();
  void LookAhead();
  void Ask();
  void DropNext();
  void Switch();
  void TellRecords(std::int64_t until);

  [[nodiscard]] bool IsRadio() const;
  void WatchStream();
  void Lose(const std::string& reason);
};

void MediaPlayer::Impl::Leave() {
  ++session;
  pipeline.reset();
  beginAt.reset();
  retryAt.reset();
  next.reset();
  decodedTrack.reset();
  applied.reset();
  started = buffering = asked = released = false;
  track = 0;
  missing.clear();
  failure.clear();
  lengthSought = {};
  heard = 0;
}

void MediaPlayer::Impl::BeginSoon(double at) {
  Leave();
  beginAt = position = toldUntil = at;
  begun = Clock::now();
}

/// What sounds; none while that is not known.
std::optional<std::string> MediaPlayer::Impl::SinkDescription() {
  if (!audioSink.empty()) return silent ? kNoSink : audioSink;
  serverChanges = server->Changes();
  if (silent) return kNoSink;
  if (server->CurrentState() == SoundServer::State::Connecting &&
      Clock::now() - begun < kServerPatience)
    return std::nullopt;
  if (server->CurrentState() == SoundServer::State::Connected && !server->Outputs().empty())
    return kServerSink;
  if (server->CurrentState() != SoundServer::State::Connected && HasSoundCard()) return kCardSink;
  silent = true;
  return kNoSink;
}

void MediaPlayer::Impl::Begin() {
  const std::optional<std::string> sink = SinkDescription();
  if (!sink) return;
  const double at = *std::exchange(beginAt, std::nullopt);
  begun = Clock::now();
  std::string error;
  medium = gst_media::Start(error) ? Find(name, error) : std::nullopt;
  if (medium) pipeline = PlayingPipeline::Make(worker, *medium, *sink, error);
  if (!pipeline) {
    Fail(error);
    return;
  }
  tags = {medium->title, {}, {}};
  stream = {};
  resumeAt = at;
  pipeline->SetVolume(Linear(), muted);
  ApplyState();
}

/// One change at a time: GStreamer may forget to play when a pipeline that is on its way there is
/// told to pause and to play again. So it is not sent there before the first sound is there.
void MediaPlayer::Impl::ApplyState() {
  if (!pipeline) return;
  const bool plays = state == State::Playing && started && !buffering;
  if (std::exchange(applied, plays) == plays) return;
  plays ? pipeline->Play() : pipeline->Pause();
}

void MediaPlayer::Impl::SetState(State wanted) {
  if (state == wanted) return;
  state = wanted;
  begun = Clock::now(); // the time without bytes counts from here
  ApplyState();
}

void MediaPlayer::Impl::TellState(State reached) {
  if (reached != state || told == reached) return;
  told = reached;
  listener.StateChanged(reached);
}

void MediaPlayer::Impl::Fail(const std::string& text) {
  Leave();
  state = told = State::Stopped;
  failure = text;
}

/// A device that has failed, or was not there, may be back.
void MediaPlayer::Impl::WatchServer() {
  if (ownServer) ownServer->Poll();
  if (!silent || !pipeline || !audioSink.empty() || server->Changes() == serverChanges) return;
  serverChanges = server->Changes();
  if (server->CurrentState() != SoundServer::State::Connected || server->Outputs().empty()) return;
  silent = false;
  BeginSoon(toldUntil);
}

void MediaPlayer::Impl::HandleBus() {
  const std::uint64_t current = session;
  while (pipeline && session == current) {
    const Message message(pipeline->NextMessage());
    if (!message) break;
    Handle(message.get());
  }
  ApplyState();
}

void MediaPlayer::Impl::Handle(GstMessage* message) {
  if (ExplainMissingDecoder(message, missing)) return;
  switch (GST_MESSAGE_TYPE(message)) {
  case GST_MESSAGE_ERROR:
    HandleError(message);
    break;
  case GST_MESSAGE_STATE_CHANGED:
    if (pipeline->IsFromPipeline(message)) HandleState(message);
    break;
  case GST_MESSAGE_BUFFERING:
    HandleBuffering(message);
    break;
  case GST_MESSAGE_APPLICATION:
    if (const auto which = pipeline->DecodedTrack(message)) HandleDecoded(*which);
    break;
  case GST_MESSAGE_EOS:
    HandleEnd();
    break;
  default:
    break;
  }
}

void MediaPlayer::Impl::HandleError(GstMessage* message) {
  if (pipeline->IsFromRemoved(message)) return;
  if (pipeline->IsFromSink(message) && !silent) {
    silent = true;
    BeginSoon(toldUntil);
    return;
  }
  if (next && pipeline->IsFromTrack(message, next->track)) {
    DropNext();
    return;
  }
  std::string text = missing.empty() ? Explain(message) : missing;
  if (IsSeekRefused(message)) seekable = false;
  if (pipeline->MediaType(track) == "text/html") text = "is a web page, not sound";
  if (everPlayed && IsNetwork(medium->uri)) {
    Lose(text);
  } else {
    Fail(About(name, text));
  }
}

void MediaPlayer::Impl::HandleState(GstMessage* message) {
  GstState reached = GST_STATE_NULL;
  GstState pending = GST_STATE_NULL;
  gst_message_parse_state_changed(message, nullptr, &reached, &pending);
  const std::uint64_t current = session;
  if (!started && reached >= GST_STATE_PAUSED) Start();
  if (session != current) return;
  if (reached == GST_STATE_PLAYING) TellState(State::Playing);
  if (reached == GST_STATE_PAUSED && pending == GST_STATE_VOID_PENDING) TellState(State::Paused);
}

/// The first sound is there.
void MediaPlayer::Impl::Start() {
  started = true;
  if (resumeAt > 0) pipeline->Seek(resumeAt);
  everPlayed = true;
  TakeNewTags();
  if (!std::exchange(tellStart, false)) return; // the device had failed
  const std::uint64_t current = session;
  listener.Started(tags);
  if (session == current && IsRadio()) listener.StreamTagsChanged(stream);
}

/// Radio waits until there is enough of it.
void MediaPlayer::Impl::HandleBuffering(GstMessage* message) {
  constexpr int kEnough = 100;
  int percent = 0;
  gst_message_parse_buffering(message, &percent);
  buffering = percent < kEnough;
}

void MediaPlayer::Impl::TakeNewTags() {
  const std::optional<PlayingPipeline::Tags> found = pipeline->NewTags(track);
  if (!found) return;
  stream = found->stream;
  const std::string fallback = medium->title;
  if (IsRadio()) {
    tags = {stream.station.empty() ? fallback : stream.station, {}, {}};
  } else {
    tags = found->medium;
    if (tags.title.empty()) tags.title = fallback;
  }
}

void MediaPlayer::Impl::TellNewTags() {
  const MediaTags before = tags;
  const StreamTags streamBefore = stream;
  TakeNewTags();
  const std::uint64_t current = session;
  if (tags != before) listener.TagsChanged(tags);
  if (session == current && stream != streamBefore && IsRadio()) listener.StreamTagsChanged(stream);
}

void MediaPlayer::Impl::HandleDecoded(int which) {
  if (!started && resumeAt > 0) return; // it will be decoded again from there
  decodedTrack = which;
  if (which != track || released) return;
  const std::uint64_t current = session;
  if (!asked) Ask();
  if (session != current || released) return;
  released = true;
  pipeline->ReleaseEnd(track);
}

void MediaPlayer::Impl::HandleEnd() {
  const std::uint64_t current = session;
  TellRecords(kForever);
  if (session != current) return;
  const bool early = IsNetwork(medium->uri) && length && position + kAboutToEnd < *length;
  if (IsRadio() || early) {
    Lose("the stream has ended");
    return;
  }
  Leave();
  state = told = State::Stopped;
  listener.Ended();
}

bool MediaPlayer::Impl::IsRadio() const {
  return medium && IsNetwork(medium->uri) && !length && !(pipeline && pipeline->Length());
}

/// Not all media know it from the beginning.
void MediaPlayer::Impl::FindLength() {
  constexpr auto kPause = 500ms;
  if (asked || !started || Clock::now() - lengthSought < kPause) return;
  lengthSought = Clock::now();
  if (const std::optional<double> found = pipeline->Length()) length = found;
}

/// Whether it is known what is heard at this moment.
bool MediaPlayer::Impl::FindPosition() {
  if (!pipeline || !started) return false;
  const std::optional<std::int64_t> now = pipeline->HeardNow();
  const auto place = now ? pipeline->Tap().At(*now) : std::nullopt;
  if (!place || place->track != track) return false;
  heard = *now;
  position = static_cast<double>(place->position) / kSecond;
  return true;
}

/// Whether the next track is heard already.
void MediaPlayer::Impl::Switch() {
  const std::optional<std::int64_t> now = pipeline->HeardNow();
  const auto place = now ? pipeline->Tap().At(*now) : std::nullopt;
  if (!next || !place || place->track != next->track) return;
  pipeline->Remove(track);
  track = next->track;
  name = next->name;
  medium = next->medium;
  next.reset();
  tags = {medium->title, {}, {}};
  asked = released = false;
  length.reset();
  lengthSought = {};
  position = toldUntil = 0;
  TakeNewTags();
  const std::uint64_t current = session;
  listener.Started(tags);
  if (session == current && decodedTrack == track) HandleDecoded(track);
}

void MediaPlayer::Impl::LookAhead() {
  const std::uint64_t current = session;
  Switch();
  if (session != current) return;
  FindLength();
  if (length && !asked && position > *length - kAboutToEnd) Ask();
}

void MediaPlayer::Impl::Ask() {
  asked = true;
  if (!IsNetwork(medium->uri)) listener.AboutToEnd();
}

void MediaPlayer::Impl::DropNext() {
  if (next) pipeline->Remove(next->track);
  next.reset();
}

void MediaPlayer::Impl::TellRecords(std::int64_t until) {
  const std::uint64_t current = session;
  const std::int64_t from = heard - offset - kStale;
  while (pipeline && session == current && state == State::Playing) {
    const std::optional<AnalysisTap::Timed> timed = pipeline->Tap().Take(from, until);
    if (!timed) return;
    const double age = static_cast<double>(heard - timed->time) / kSecond;
    toldUntil = std::max(0.0, position - age + kRecordSeconds);
    lastTold = Clock::now();
    listener.Record(timed->record);
  }
}

/// Whatever comes from the network may stall, and what was lost is tried again.
void MediaPlayer::Impl::WatchStream() {
  if (state != State::Playing || !medium || !IsNetwork(medium->uri)) return;
  const Clock::time_point now = Clock::now();
  if (retryAt && now >= *retryAt) BeginSoon(IsRadio() || !seekable ? 0 : toldUntil);
  if (!pipeline || decodedTrack) return;
  if (started && now - begun > kRecovered) tries = 0;
  // Nothing needs to come while there is enough to play, or all of it.
  if (now - std::max({begun, lastTold, pipeline->LastBytes()}) < kStall) return;
  if (everPlayed) {
    Lose("nothing came for 10 seconds");
  } else {
    Fail(About(name, "does not answer"));
  }
}

void MediaPlayer::Impl::Lose(const std::string& reason) {
  Leave();
  tellStart = true;
  retryAt = Clock::now() + kPauses[std::min(tries, kPauses.size() - 1)];
  ++tries;
  listener.Reconnecting(About(name, reason));
}

MediaPlayer::MediaPlayer(Listener& listener, std::string audioSink, SoundServer* server)
    : impl_(std::make_unique<Impl>(listener, std::move(audioSink), server)) {}

MediaPlayer::~MediaPlayer() {
  impl_->pipeline.reset();
  impl_->worker.Finish(kClosePatience);
}

void MediaPlayer::Open(const std::string& medium) {
  Impl& impl = *impl_;
  impl.name = medium;
  impl.silent = impl.everPlayed = false;
  impl.tellStart = true;
  impl.tries = 0;
  impl.seekable = true;
  impl.length.reset();
  impl.BeginSoon(0);
  impl.state = impl.told = State::Playing;
}

void MediaPlayer::SetNext(const std::string& medium) {
  Impl& impl = *impl_;
  if (!impl.pipeline) return;
  impl.DropNext();
  if (medium.empty() || impl.released || IsNetwork(impl.medium->uri)) return;
  std::string error;
  const std::optional<Medium> found = Find(medium, error);
  if (!found || IsNetwork(found->uri)) return;
  if (const std::optional<int> track = impl.pipeline->Join(*found))
    impl.next = Impl::Next{*track, medium, *found};
}

void MediaPlayer::Play() {
  Impl& impl = *impl_;
  if (impl.state != State::Stopped) {
    impl.SetState(State::Playing);
  } else if (!impl.name.empty()) {
    Open(std::string(impl.name));
  }
}

void MediaPlayer::Pause() {
  if (impl_->state != State::Stopped) impl_->SetState(State::Paused);
}

void MediaPlayer::Stop() {
  impl_->Leave();
  impl_->state = impl_->told = State::Stopped;
  impl_->position = impl_->toldUntil = 0;
  impl_->length.reset();
}

void MediaPlayer::Seek(double seconds) {
  Impl& impl = *impl_;
  if (!CanSeek()) return;
  const double wanted = std::clamp(seconds, 0.0, Length().value_or(kLongest));
  if (impl.released || impl.decodedTrack == impl.track) { // what was to be sought in has gone by
    impl.BeginSoon(wanted);
    return;
  }
  impl.DropNext();
  impl.asked = false;
  impl.position = impl.toldUntil = wanted;
  impl.heard = 0;
  impl.pipeline->Seek(wanted);
}

void MediaPlayer::Poll() {
  Impl& impl = *impl_;
  impl.WatchServer();
  if (impl.beginAt) impl.Begin();
  impl.HandleBus(); // first: a device that has failed may say that it is anywhere
  if (impl.pipeline && impl.started) impl.TellNewTags();
  if (impl.pipeline && impl.started) impl.LookAhead();
  if (impl.FindPosition()) impl.TellRecords(impl.heard - impl.offset);
  impl.WatchStream();
  // Nothing that could say so is there while radio is waited for.
  if (impl.retryAt) impl.TellState(impl.state);
  if (!impl.failure.empty()) impl.listener.Failed(std::exchange(impl.failure, {}));
}

void MediaPlayer::SetVolume(double volume) {
  impl_->volume = std::clamp(volume, 0.0, 1.0);
  if (impl_->pipeline) impl_->pipeline->SetVolume(impl_->Linear(), impl_->muted);
}

void MediaPlayer::SetMuted(bool muted) {
  impl_->muted = muted;
  if (impl_->pipeline) impl_->pipeline->SetVolume(impl_->Linear(), muted);
}

void MediaPlayer::SetOffset(int milliseconds) {
  impl_->offset = std::clamp(milliseconds, -500, 2000) * std::int64_t{GST_MSECOND};
}

MediaPlayer::State MediaPlayer::CurrentState() const {
  return impl_->state;
}

const std::string& MediaPlayer::CurrentMedium() const {
  return impl_->name;
}

double MediaPlayer::Position() const {
  impl_->FindPosition(); // else the last that was known
  return impl_->position;
}

std::optional<double> MediaPlayer::Length() const {
  if (impl_->length || !impl_->pipeline || impl_->asked) return impl_->length;
  return impl_->pipeline->Length();
}

bool MediaPlayer::CanSeek() const {
  return impl_->pipeline && impl_->started && impl_->seekable && !impl_->IsRadio() &&
         impl_->pipeline->CanSeek();
}

double MediaPlayer::Volume() const {
  return impl_->volume;
}

bool MediaPlayer::IsMuted() const {
  return impl_->muted;
}

} // namespace halvenor
