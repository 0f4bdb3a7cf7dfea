#include "host/playing_pipeline.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <utility>

namespace halvenor {

using namespace gst_media;

namespace {

using Owner = std::unique_ptr<GstObject, ReleasedBy<gst_object_unref>>;

constexpr double kSecond = static_cast<double>(GST_SECOND);

// The analysis runs ahead of the ear by what the first queue holds.
constexpr const char* kQueue = "queue max-size-time=1000000000 max-size-buffers=0 max-size-bytes=0";

// The application message that the last sound of a track was decoded.
constexpr const char* kDecoded = "halvenor-decoded";

// Marks a decoder that is being removed.
constexpr const char* kRemoved = "halvenor-removed";

// How much of a network stream is there before it is heard.
constexpr std::int64_t kStreamBuffer = 2 * GST_SECOND;

std::string Description() {
  return std::string("concat name=joint ! tee name=tee  tee. ! ") + kQueue +
         " ! audioconvert ! audioresample ! volume name=volume  tee. ! " + kQueue + " ! " +
         kToAnalysis + " ! appsink name=analysis sync=false async=false";
}

} // namespace

/// What the threads of a track's decoder and the host share. Lives as long as either.
struct PlayingPipeline::Track {
  int number = 0;
  Element decoder;
  Pad joint; // where it meets the others
  int seeksAsked = 0;

  // The mutex is held by whoever touches it, the constructing and the last one too.
  struct Shared {
    ~Shared() { const std::scoped_lock lock(mutex); }
    int number = 0;
    Pad joint;
    bool announced = false;
    int seeks = 0; // made, or failed
    Clock::time_point lastBytes;
    std::mutex mutex;
    Tags tags;
    bool newTags = false;
  };
  std::shared_ptr<Shared> shared = std::make_shared<Shared>();

  void Connect(bool network);
  void NoteSeek() const {
    const std::scoped_lock lock(shared->mutex);
    ++shared->seeks;
  }

  static void OnPad(GstElement* decoder, GstPad* pad, Shared* shared);
  static void OnSource(GstElement* decoder, GstElement* source, Shared* shared);
  static GstPadProbeReturn OnFlow(GstPad* pad, GstPadProbeInfo* info, void* shared);
  static GstPadProbeReturn OnEvent(GstPad* pad, GstEvent* event, Shared& shared);
  static GstPadProbeReturn OnBytes(GstPad* pad, GstPadProbeInfo* info, void* shared);
};

struct PlayingPipeline::Parts {
  Element pipeline;
  Element audio; // the sink that is heard
  Element joint;
  Element volume;
  Bus bus;
  std::unique_ptr<AnalysisTap> tap;
  std::map<int, std::shared_ptr<Track>> tracks;
  std::atomic<int> changing = 0; // changes of state and place that are still to be made

  ~Parts() {
    if (pipeline) gst_element_set_state(pipeline.get(), GST_STATE_NULL);
  }
};

void PlayingPipeline::Track::Connect(bool network) {
  // Each closure keeps what it works with.
  const auto connect = [this](const char* signal, GCallback callback) {
    const auto release = [](void* data, GClosure*) {
      delete static_cast<std::shared_ptr<Shared>*>(data);
    };
    GClosure* closure = g_cclosure_new(callback, shared.get(), nullptr);
    g_closure_add_finalize_notifier(closure, new std::shared_ptr<Shared>(shared), release);
    g_signal_connect_closure(decoder.get(), signal, closure, FALSE);
  };
  connect("pad-added", G_CALLBACK(OnPad));
  if (!network) return;
  connect("source-setup", G_CALLBACK(OnSource));
  g_object_set(decoder.get(), "use-buffering", TRUE, "buffer-duration", kStreamBuffer, nullptr);
}

/// Radio may replace its pad at every title: the new one comes when the old one has gone.
void PlayingPipeline::Track::OnPad(GstElement* /*decoder*/, GstPad* pad, Shared* shared) {
  GstPad* joint = nullptr;
  {
    const std::scoped_lock lock(shared->mutex);
    joint = shared->joint.get();
  }
  if (GST_PAD_IS_SRC(pad) == FALSE || gst_pad_is_linked(joint) != FALSE) return;
  constexpr auto kFlow =
      static_cast<GstPadProbeType>(GST_PAD_PROBE_TYPE_BUFFER | GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM |
                                   GST_PAD_PROBE_TYPE_EVENT_FLUSH);
  gst_pad_add_probe(pad, kFlow, OnFlow, shared, nullptr);
  gst_pad_link(pad, joint);
}

void PlayingPipeline::Track::OnSource(GstElement* /*decoder*/, GstElement* source, Shared* shared) {
  {
    const std::scoped_lock lock(shared->mutex);
    shared->lastBytes = Clock::now();
  }
  const Pad pad(gst_element_get_static_pad(source, "src"));
  if (pad) gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, OnBytes, shared, nullptr);
}

GstPadProbeReturn PlayingPipeline::Track::OnBytes(GstPad* /*pad*/, GstPadProbeInfo* /*info*/,
                                                  void* shared) {
  const std::scoped_lock lock(static_cast<Shared*>(shared)->mutex);
  static_cast<Shared*>(shared)->lastBytes = Clock::now();
  return GST_PAD_PROBE_OK;
}

GstPadProbeReturn PlayingPipeline::Track::OnFlow(GstPad* pad, GstPadProbeInfo* info, void* data) {
  auto& shared = *static_cast<Shared*>(data);
  if ((GST_PAD_PROBE_INFO_TYPE(info) & GST_PAD_PROBE_TYPE_BUFFER) == 0)
    return OnEvent(pad, GST_PAD_PROBE_INFO_EVENT(info), shared);
  std::optional<int> news;
  {
    const std::scoped_lock lock(shared.mutex);
    if (!std::exchange(shared.announced, true)) news = shared.number;
  }
  if (news) gst_pad_push_event(pad, AnalysisTap::MakeTrackEvent(*news));
  return GST_PAD_PROBE_OK;
}

GstPadProbeReturn PlayingPipeline::Track::OnEvent(GstPad* pad, GstEvent* event, Shared& shared) {
  std::unique_lock lock(shared.mutex);
  if (GST_EVENT_TYPE(event) == GST_EVENT_TAG) {
    GstTagList* list = nullptr;
    gst_event_parse_tag(event, &list);
    const bool medium = TakeTags(list, shared.tags.medium);
    const bool stream = TakeTags(list, shared.tags.stream);
    shared.newTags = shared.newTags || medium || stream;
  }
  if (GST_EVENT_TYPE(event) == GST_EVENT_FLUSH_STOP) ++shared.seeks;
  if (GST_EVENT_TYPE(event) != GST_EVENT_EOS) return GST_PAD_PROBE_OK;
  // The host decides what follows, and then says so to the joint.
  const Element decoder(gst_pad_get_parent_element(pad));
  GstStructure* content = gst_structure_new(kDecoded, "track", G_TYPE_INT, shared.number, "seeks",
                                            G_TYPE_INT, shared.seeks, nullptr);
  lock.unlock();
  GstObject* source = GST_OBJECT(decoder.get());
  gst_element_post_message(decoder.get(), gst_message_new_application(source, content));
  return GST_PAD_PROBE_DROP;
}

PlayingPipeline::PlayingPipeline(Worker& worker, std::shared_ptr<Parts> parts)
    : worker_(worker), parts_(std::move(parts)) {}

/// The worker is the last to hold the parts.
PlayingPipeline::~PlayingPipeline() {
  worker_.Do([parts = std::move(parts_)]() mutable { parts.reset(); });
}

std::unique_ptr<PlayingPipeline> PlayingPipeline::Make(Worker& worker, const Medium& medium,
                                                       const std::string& audioSink,
                                                       std::string& error) {
  auto parts = std::make_shared<Parts>();
  parts->pipeline = MakePipeline(Description(), error);
  if (!parts->pipeline) return nullptr;
  parts->audio = MakeSink(audioSink, error);
  if (!parts->audio) return nullptr;
  parts->joint = Part(parts->pipeline, "joint");
  parts->volume = Part(parts->pipeline, "volume");
  gst_bin_add(GST_BIN(parts->pipeline.get()), parts->audio.get());
  gst_element_link(parts->volume.get(), parts->audio.get());
  const Element analysis = Part(parts->pipeline, "analysis");
  parts->tap = std::make_unique<AnalysisTap>(GST_APP_SINK(analysis.get()));
  parts->bus.reset(gst_element_get_bus(parts->pipeline.get()));
  std::unique_ptr<PlayingPipeline> made(new PlayingPipeline(worker, std::move(parts)));
  if (made->Join(medium)) return made;
  error = "GStreamer is not complete: no element \"uridecodebin\"";
  return nullptr;
}

std::optional<int> PlayingPipeline::Join(const Medium& medium) {
  auto track = std::make_shared<Track>();
  track->decoder.reset(gst_element_factory_make("uridecodebin", nullptr));
  if (!track->decoder) return std::nullopt;
  gst_object_ref_sink(track->decoder.get());
  const Caps caps(gst_caps_new_empty_simple("audio/x-raw"));
  g_object_set(track->decoder.get(), "uri", medium.uri.c_str(), "caps", caps.get(),
               "expose-all-streams", FALSE, nullptr);
  track->number = parts_->tracks.empty() ? 0 : parts_->tracks.rbegin()->first + 1;
  track->joint.reset(gst_element_request_pad_simple(parts_->joint.get(), "sink_%u"));
  {
    const std::scoped_lock lock(track->shared->mutex);
    track->shared->number = track->number;
    track->shared->joint.reset(GST_PAD(gst_object_ref(track->joint.get())));
  }
  track->Connect(IsNetwork(medium.uri));
  gst_bin_add(GST_BIN(parts_->pipeline.get()), track->decoder.get());
  parts_->tracks[track->number] = track;
  if (track->number > 0)
    worker_.Do(
        [parts = parts_, track] { gst_element_sync_state_with_parent(track->decoder.get()); });
  return track->number;
}

std::shared_ptr<PlayingPipeline::Track> PlayingPipeline::Find(int track) const {
  const auto found = parts_->tracks.find(track);
  return found != parts_->tracks.end() ? found->second : nullptr;
}

void PlayingPipeline::Remove(int track) {
  const std::shared_ptr<Track> removed = Find(track);
  if (!removed) return;
  parts_->tracks.erase(track);
  g_object_set_data(G_OBJECT(removed->decoder.get()), kRemoved, removed->decoder.get());
  worker_.Do([parts = parts_, removed] {
    // First, so that a decoder that waits for its turn there can end.
    gst_element_release_request_pad(parts->joint.get(), removed->joint.get());
    gst_element_set_locked_state(removed->decoder.get(), TRUE);
    gst_element_set_state(removed->decoder.get(), GST_STATE_NULL);
    gst_bin_remove(GST_BIN(parts->pipeline.get()), removed->decoder.get());
    // One that could not start has held up all the others.
    GstElement* pipeline = parts->pipeline.get();
    if (GST_STATE_RETURN(pipeline) == GST_STATE_CHANGE_FAILURE)
      gst_element_set_state(pipeline, GST_STATE_TARGET(pipeline));
  });
}

void PlayingPipeline::ReleaseEnd(int track) {
  if (const std::shared_ptr<Track> ending = Find(track))
    worker_.Do([ending] { gst_pad_send_event(ending->joint.get(), gst_event_new_eos()); });
}

void PlayingPipeline::SetState(GstState state) {
  // A failure comes by the bus.
  ++parts_->changing;
  worker_.Do([parts = parts_, state] {
    gst_element_set_state(parts->pipeline.get(), state);
    --parts->changing;
  });
}

void PlayingPipeline::Play() {
  SetState(GST_STATE_PLAYING);
}

void PlayingPipeline::Pause() {
  SetState(GST_STATE_PAUSED);
}

void PlayingPipeline::Seek(double seconds) {
  const std::shared_ptr<Track> track = parts_->tracks.begin()->second;
  ++track->seeksAsked;
  ++parts_->changing;
  worker_.Do([parts = parts_, track, seconds] {
    const auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
    // Not from the pipeline: that would ask from both ends, and flush twice.
    if (gst_element_seek_simple(parts->audio.get(), GST_FORMAT_TIME, flags,
                                static_cast<std::int64_t>(seconds * kSecond)) == FALSE)
      track->NoteSeek();
    --parts->changing;
  });
}

void PlayingPipeline::SetVolume(double linear, bool muted) {
  g_object_set(parts_->volume.get(), "volume", linear, "mute", muted ? TRUE : FALSE, nullptr);
}

GstMessage* PlayingPipeline::NextMessage() {
  return gst_bus_pop(parts_->bus.get());
}

namespace {

bool IsFrom(GstMessage* message, const Element& element) {
  GstObject* source = GST_MESSAGE_SRC(message);
  GstObject* whole = GST_OBJECT(element.get());
  return source == whole || gst_object_has_as_ancestor(source, whole) != FALSE;
}

} // namespace

std::optional<int> PlayingPipeline::DecodedTrack(GstMessage* message) const {
  const GstStructure* content = gst_message_get_structure(message);
  int track = 0;
  int seeks = 0;
  if (GST_MESSAGE_TYPE(message) != GST_MESSAGE_APPLICATION ||
      gst_structure_has_name(content, kDecoded) == FALSE ||
      gst_structure_get(content, "track", G_TYPE_INT, &track, "seeks", G_TYPE_INT, &seeks,
                        nullptr) == FALSE)
    return std::nullopt;
  const std::shared_ptr<Track> decoded = Find(track);
  if (!decoded || seeks < decoded->seeksAsked) return std::nullopt;
  return track;
}

bool PlayingPipeline::IsFromSink(GstMessage* message) const {
  return IsFrom(message, parts_->audio);
}

bool PlayingPipeline::IsFromTrack(GstMessage* message, int track) const {
  const std::shared_ptr<Track> found = Find(track);
  return found && IsFrom(message, found->decoder);
}

bool PlayingPipeline::IsFromPipeline(GstMessage* message) const {
  return GST_MESSAGE_SRC(message) == GST_OBJECT(parts_->pipeline.get());
}

bool PlayingPipeline::IsFromRemoved(GstMessage* message) const {
  Owner at(GST_OBJECT(gst_object_ref(GST_MESSAGE_SRC(message))));
  while (at && g_object_get_data(G_OBJECT(at.get()), kRemoved) == nullptr) {
    if (at.get() == GST_OBJECT(parts_->pipeline.get())) return false;
    at.reset(gst_object_get_parent(at.get()));
  }
  return true; // marked, or a part that its decoder has let go
}

std::string PlayingPipeline::MediaType(int track) const {
  const std::shared_ptr<Track> found = Find(track);
  return found ? gst_media::MediaType(found->decoder) : std::string();
}

std::optional<PlayingPipeline::Tags> PlayingPipeline::NewTags(int track) {
  const std::shared_ptr<Track> found = Find(track);
  if (!found) return std::nullopt;
  const std::scoped_lock lock(found->shared->mutex);
  return std::exchange(found->shared->newTags, false) ? std::optional(found->shared->tags)
                                                      : std::nullopt;
}

PlayingPipeline::Clock::time_point PlayingPipeline::LastBytes() const {
  Clock::time_point last;
  for (const auto& [number, track] : parts_->tracks) {
    const std::scoped_lock lock(track->shared->mutex);
    last = std::max(last, track->shared->lastBytes);
  }
  return last;
}

std::optional<std::int64_t> PlayingPipeline::HeardNow() const {
  if (parts_->changing > 0) return std::nullopt;
  GstState state = GST_STATE_NULL;
  if (gst_element_get_state(parts_->pipeline.get(), &state, nullptr, 0) !=
          GST_STATE_CHANGE_SUCCESS ||
      state != GST_STATE_PLAYING)
    return std::nullopt;
  const GstClockTime now = gst_element_get_current_running_time(parts_->pipeline.get());
  if (now == GST_CLOCK_TIME_NONE) return std::nullopt;
  return static_cast<std::int64_t>(now);
}

std::optional<double> PlayingPipeline::Length() const {
  std::int64_t length = 0;
  if (gst_element_query_duration(parts_->pipeline.get(), GST_FORMAT_TIME, &length) == FALSE ||
      length <= 0)
    return std::nullopt;
  return static_cast<double>(length) / kSecond;
}

bool PlayingPipeline::CanSeek() const {
  const std::unique_ptr<GstQuery, ReleasedBy<gst_query_unref>> query(
      gst_query_new_seeking(GST_FORMAT_TIME));
  if (gst_element_query(parts_->pipeline.get(), query.get()) == FALSE) return false;
  gboolean can = FALSE;
  gst_query_parse_seeking(query.get(), nullptr, &can, nullptr, nullptr);
  return can != FALSE;
}

AnalysisTap& PlayingPipeline::Tap() {
  return *parts_->tap;
}

} // namespace halvenor
