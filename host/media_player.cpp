#include "host/media_player.h"

#include "host/analysis_tap.h"
#include "host/gst_media.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace halvenor {

namespace {

using namespace gst_media;

constexpr double kSecond = static_cast<double>(GST_SECOND);
constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max();

/// After a long absence of the host records that are older than this are not told any more.
constexpr std::int64_t kStale = 200 * GST_MSECOND;

// The analysis runs ahead of the ear by what the first queue holds.
constexpr const char* kQueue = "queue max-size-time=1000000000 max-size-buffers=0 max-size-bytes=0";

std::string Description() {
  return std::string(kDecoder) + " ! tee name=tee  tee. ! " + kQueue +
         " ! audioconvert ! audioresample name=heard  tee. ! " + kQueue + " ! " + kToAnalysis +
         " ! appsink name=analysis sync=false async=false";
}

/// One medium on its way to the ear.
struct Session {
  Element pipeline;
  Element audio; // the sink that is heard
  Bus bus;
  std::unique_ptr<AnalysisTap> tap;
  double resumeAt = 0; // seconds; where to go once the first sound is there
  bool started = false;
  std::string missing; // what GStreamer lacks for this medium

  ~Session() {
    if (pipeline) gst_element_set_state(pipeline.get(), GST_STATE_NULL);
  }
};

std::unique_ptr<Session> MakeSession(const Medium& medium, const std::string& audioSink,
                                     std::string& error) {
  auto session = std::make_unique<Session>();
  session->pipeline = MakePipeline(Description(), medium.uri, error);
  if (!session->pipeline) return nullptr;
  session->audio = MakeSink(audioSink, error);
  if (!session->audio) return nullptr;
  gst_bin_add(GST_BIN(session->pipeline.get()), GST_ELEMENT(gst_object_ref(session->audio.get())));
  gst_element_link(Part(session->pipeline, "heard").get(), session->audio.get());
  const Element analysis = Part(session->pipeline, "analysis");
  session->tap = std::make_unique<AnalysisTap>(GST_APP_SINK(analysis.get()));
  session->bus.reset(gst_element_get_bus(session->pipeline.get()));
  return session;
}

} // namespace

struct MediaPlayer::Impl {
  Listener& listener;
  std::string audioSink;
  std::string name; // of the last medium asked for
  std::optional<Medium> medium;
  MediaTags tags;
  State state = State::Stopped;
  std::unique_ptr<Session> session;
  bool silent = false; // the audio device has failed
  double position = 0; // seconds, when last asked
  std::string failure; // to be told by the next `Poll`

  void Begin(double at);
  [[nodiscard]] std::string SinkDescription() const;
  void SetState(State wanted);
  void Fail(const std::string& text);
  void HandleBus();
  void Handle(GstMessage* message);
  void HandleError(GstMessage* message);
  void HandleStart(GstMessage* message);
  void HandleTags(GstMessage* message);
  void HandleEnd();
  void FindPosition();
  void TellRecords(std::int64_t until);
};

void MediaPlayer::Impl::Fail(const std::string& text) {
  session.reset();
  state = State::Stopped;
  failure = text;
}

void MediaPlayer::Impl::Begin(double at) {
  session.reset();
  failure.clear();
  position = at;
  tags = {};
  std::string error;
  medium = Start(error) ? Find(name, error) : std::nullopt;
  if (medium) {
    tags.title = medium->title;
    session = MakeSession(*medium, SinkDescription(), error);
  }
  if (!session) {
    Fail(error);
    return;
  }
  session->resumeAt = at;
  SetState(State::Playing);
}

std::string MediaPlayer::Impl::SinkDescription() const {
  // Asking first: the search for a sink fills standard error with complaints when there is none.
  if (silent || (audioSink.empty() && !HasAudioDevice())) return "fakesink sync=true";
  return audioSink.empty() ? "autoaudiosink" : audioSink;
}

void MediaPlayer::Impl::SetState(State wanted) {
  state = wanted;
  const GstState gst = wanted == State::Playing ? GST_STATE_PLAYING : GST_STATE_PAUSED;
  gst_element_set_state(session->pipeline.get(), gst); // a failure comes by the bus
}

void MediaPlayer::Impl::HandleBus() {
  const Session* current = session.get();
  // A listener may have begun another session.
  while (session && session.get() == current) {
    const Message message(gst_bus_pop(session->bus.get()));
    if (!message) return;
    Handle(message.get());
  }
}

void MediaPlayer::Impl::Handle(GstMessage* message) {
  if (ExplainMissingDecoder(message, session->missing)) return;
  switch (GST_MESSAGE_TYPE(message)) {
  case GST_MESSAGE_ERROR:
    HandleError(message);
    break;
  case GST_MESSAGE_STATE_CHANGED:
    if (GST_MESSAGE_SRC(message) == GST_OBJECT(session->pipeline.get())) HandleStart(message);
    break;
  case GST_MESSAGE_TAG:
    HandleTags(message);
    break;
  case GST_MESSAGE_EOS:
    HandleEnd();
    break;
  default:
    break;
  }
}

void MediaPlayer::Impl::HandleError(GstMessage* message) {
  GstObject* audio = GST_OBJECT(session->audio.get());
  GstObject* source = GST_MESSAGE_SRC(message);
  const bool device = source == audio || gst_object_has_as_ancestor(source, audio) != FALSE;
  if (device && !silent) {
    const State wanted = state;
    silent = true;
    Begin(position);
    if (session) SetState(wanted);
    return;
  }
  Fail(About(name, session->missing.empty() ? Explain(message) : session->missing));
}

/// The pipeline has changed its state: the first time that it is ready for sound, it has started.
void MediaPlayer::Impl::HandleStart(GstMessage* message) {
  GstState reached = GST_STATE_NULL;
  gst_message_parse_state_changed(message, nullptr, &reached, nullptr);
  if (session->started || reached < GST_STATE_PAUSED) return;
  session->started = true;
  if (session->resumeAt > 0) {
    const auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
    gst_element_seek_simple(session->pipeline.get(), GST_FORMAT_TIME, flags,
                            static_cast<std::int64_t>(session->resumeAt * kSecond));
    return; // it had been told before the device failed
  }
  listener.Started(tags);
}

void MediaPlayer::Impl::HandleTags(GstMessage* message) {
  if (TakeTags(message, tags) && session->started) listener.TagsChanged(tags);
}

void MediaPlayer::Impl::HandleEnd() {
  const Session* current = session.get();
  TellRecords(kForever);
  if (session.get() != current) return;
  session.reset();
  state = State::Stopped;
  listener.Ended();
}

void MediaPlayer::Impl::FindPosition() {
  std::int64_t heard = 0;
  if (session && session->started &&
      gst_element_query_position(session->audio.get(), GST_FORMAT_TIME, &heard) != FALSE)
    position = static_cast<double>(heard) / kSecond;
}

void MediaPlayer::Impl::TellRecords(std::int64_t until) {
  const Session* current = session.get();
  const auto now = static_cast<std::int64_t>(position * kSecond);
  const auto from = std::max(now - kStale, static_cast<std::int64_t>(session->resumeAt * kSecond));
  while (session && session.get() == current && state == State::Playing) {
    const std::optional<RenderVisualData> record = session->tap->Take(from, until);
    if (!record) return;
    listener.Record(*record);
  }
}

MediaPlayer::MediaPlayer(Listener& listener, std::string audioSink, SoundServer* /*server*/)
    : impl_(new Impl{listener, std::move(audioSink), {}, {}, {}, {}, {}, {}, {}, {}}) {}

MediaPlayer::~MediaPlayer() = default;

void MediaPlayer::Open(const std::string& medium) {
  impl_->name = medium;
  impl_->silent = false;
  impl_->Begin(0);
}

void MediaPlayer::Play() {
  if (impl_->session) {
    impl_->SetState(State::Playing);
  } else if (!impl_->name.empty()) {
    impl_->Begin(0);
  }
}

void MediaPlayer::Pause() {
  if (impl_->session) impl_->SetState(State::Paused);
}

void MediaPlayer::Stop() {
  impl_->session.reset();
  impl_->state = State::Stopped;
  impl_->failure.clear();
  impl_->position = 0;
}

void MediaPlayer::Poll() {
  impl_->HandleBus(); // first: a device that has failed may say that it is anywhere
  impl_->FindPosition();
  if (impl_->session && impl_->session->started)
    impl_->TellRecords(static_cast<std::int64_t>(impl_->position * kSecond));
  if (!impl_->failure.empty()) impl_->listener.Failed(std::exchange(impl_->failure, {}));
}

MediaPlayer::State MediaPlayer::CurrentState() const {
  return impl_->state;
}

double MediaPlayer::Position() const {
  impl_->FindPosition();
  return impl_->position;
}

const std::string& MediaPlayer::CurrentMedium() const {
  return impl_->name;
}

std::optional<double> MediaPlayer::Length() const {
  std::int64_t length = 0;
  if (!impl_->session ||
      gst_element_query_duration(impl_->session->pipeline.get(), GST_FORMAT_TIME, &length) == FALSE)
    return std::nullopt;
  return static_cast<double>(length) / kSecond;
}

} // namespace halvenor
