#include "audio/gapless_pipeline.h"

#include "files/translated.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <utility>

namespace halvenor {

using namespace gst_media;

namespace {

using Owner = std::unique_ptr<GstObject, ReleasedBy<gst_object_unref>>;

// The analysis runs ahead of the ear by what the first queue holds: more than `kMostOffset`.
constexpr const char* kQueue = "queue max-size-time=2500000000 max-size-buffers=0 max-size-bytes=0";

// Marks a decoder that is being removed.
constexpr const char* kRemoved = "halvenor-removed";

std::string Description() {
  return std::string("concat name=joint ! tee name=tee  tee. ! ") + kQueue +
         " ! audioconvert ! audioresample ! volume name=volume  tee. ! " + kQueue + " ! " +
         kToAnalysis + " ! appsink name=analysis sync=false async=false";
}

} // namespace

struct GaplessPipeline::Parts {
  Element pipeline;
  Element audio; // the sink that is heard
  Element joint;
  Element volume;
  Bus bus;
  std::unique_ptr<AnalysisTap> tap;
  std::map<int, std::shared_ptr<TrackDecoder>> tracks;
  std::atomic<int> changing = 0; // changes of state and place that are still to be made

  ~Parts() {
    if (pipeline) gst_element_set_state(pipeline.get(), GST_STATE_NULL);
  }
};

GaplessPipeline::GaplessPipeline(Worker& worker, std::shared_ptr<Parts> parts)
    : worker_(worker), parts_(std::move(parts)) {}

/// The worker is the last to hold the parts.
GaplessPipeline::~GaplessPipeline() {
  worker_.Do([parts = std::move(parts_)]() mutable { parts.reset(); });
}

std::unique_ptr<GaplessPipeline> GaplessPipeline::Make(Worker& worker, const Medium& medium,
                                                       const std::string& audioSink,
                                                       std::string& error) {
  auto parts = std::make_shared<Parts>();
  parts->pipeline = MakePipeline(Description(), error);
  if (!parts->pipeline) return nullptr;
  parts->audio = MakeSink(audioSink, error);
  if (!parts->audio) return nullptr;
  parts->joint = Part(parts->pipeline.get(), "joint");
  parts->volume = Part(parts->pipeline.get(), "volume");
  gst_bin_add(GST_BIN(parts->pipeline.get()), parts->audio.get());
  gst_element_link(parts->volume.get(), parts->audio.get());
  const Element analysis = Part(parts->pipeline.get(), "analysis");
  parts->tap = std::make_unique<AnalysisTap>(GST_APP_SINK(analysis.get()));
  parts->bus.reset(gst_element_get_bus(parts->pipeline.get()));
  std::unique_ptr<GaplessPipeline> made(new GaplessPipeline(worker, std::move(parts)));
  if (made->Join(medium)) return made;
  error = Filled(Translated("halvenor::Audio", "GStreamer is not complete: %1"), {"uridecodebin"});
  return nullptr;
}

std::optional<int> GaplessPipeline::Join(const Medium& medium) {
  const int number = parts_->tracks.empty() ? 0 : parts_->tracks.rbegin()->first + 1;
  const std::shared_ptr<TrackDecoder> track = TrackDecoder::Make(number, medium, parts_->joint);
  if (!track) return std::nullopt;
  gst_bin_add(GST_BIN(parts_->pipeline.get()), track->Decoder());
  parts_->tracks[number] = track;
  if (number > 0)
    worker_.Do([parts = parts_, track] { gst_element_sync_state_with_parent(track->Decoder()); });
  return number;
}

std::shared_ptr<TrackDecoder> GaplessPipeline::Find(int track) const {
  const auto found = parts_->tracks.find(track);
  return found != parts_->tracks.end() ? found->second : nullptr;
}

void GaplessPipeline::Remove(int track) {
  const std::shared_ptr<TrackDecoder> removed = Find(track);
  if (!removed) return;
  parts_->tracks.erase(track);
  g_object_set_data(G_OBJECT(removed->Decoder()), kRemoved, removed->Decoder());
  worker_.Do([parts = parts_, removed] {
    // First, so that a decoder that waits for its turn there can end.
    gst_element_release_request_pad(parts->joint.get(), removed->Joint());
    gst_element_set_locked_state(removed->Decoder(), TRUE);
    gst_element_set_state(removed->Decoder(), GST_STATE_NULL);
    gst_bin_remove(GST_BIN(parts->pipeline.get()), removed->Decoder());
    // One that could not start has held up all the others.
    GstElement* pipeline = parts->pipeline.get();
    if (GST_STATE_RETURN(pipeline) == GST_STATE_CHANGE_FAILURE)
      gst_element_set_state(pipeline, GST_STATE_TARGET(pipeline));
  });
}

void GaplessPipeline::ReleaseEnd(int track) {
  if (const std::shared_ptr<TrackDecoder> ending = Find(track))
    worker_.Do([ending] { gst_pad_send_event(ending->Joint(), gst_event_new_eos()); });
}

void GaplessPipeline::SetState(GstState state) {
  // A failure comes by the bus.
  ++parts_->changing;
  worker_.Do([parts = parts_, state] {
    gst_element_set_state(parts->pipeline.get(), state);
    --parts->changing;
  });
}

void GaplessPipeline::Play() {
  SetState(GST_STATE_PLAYING);
}

void GaplessPipeline::Pause() {
  SetState(GST_STATE_PAUSED);
}

void GaplessPipeline::Seek(double seconds) {
  const std::shared_ptr<TrackDecoder> track = parts_->tracks.begin()->second;
  track->NoteSeekAsked();
  ++parts_->changing;
  worker_.Do([parts = parts_, track, seconds] {
    const auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
    // Not from the pipeline: that would ask from both ends, and flush twice.
    if (gst_element_seek_simple(parts->audio.get(), GST_FORMAT_TIME, flags,
                                static_cast<std::int64_t>(seconds * kSecond)) == FALSE)
      track->NoteSeekFailed();
    --parts->changing;
  });
}

void GaplessPipeline::SetVolume(double linear, bool muted) {
  g_object_set(parts_->volume.get(), "volume", linear, "mute", muted ? TRUE : FALSE, nullptr);
}

GstMessage* GaplessPipeline::NextMessage() {
  return gst_bus_pop(parts_->bus.get());
}

namespace {

bool IsFrom(GstMessage* message, GstElement* element) {
  GstObject* source = GST_MESSAGE_SRC(message);
  GstObject* whole = GST_OBJECT(element);
  return source == whole || gst_object_has_as_ancestor(source, whole) != FALSE;
}

} // namespace

std::optional<int> GaplessPipeline::DecodedTrack(GstMessage* message) const {
  for (const auto& [number, track] : parts_->tracks)
    if (track->IsDecoded(message)) return number;
  return std::nullopt;
}

bool GaplessPipeline::IsFromSink(GstMessage* message) const {
  return IsFrom(message, parts_->audio.get());
}

bool GaplessPipeline::IsFromTrack(GstMessage* message, int track) const {
  const std::shared_ptr<TrackDecoder> found = Find(track);
  return found && IsFrom(message, found->Decoder());
}

bool GaplessPipeline::IsFromPipeline(GstMessage* message) const {
  return GST_MESSAGE_SRC(message) == GST_OBJECT(parts_->pipeline.get());
}

bool GaplessPipeline::IsFromRemoved(GstMessage* message) const {
  Owner at(GST_OBJECT(gst_object_ref(GST_MESSAGE_SRC(message))));
  while (at && g_object_get_data(G_OBJECT(at.get()), kRemoved) == nullptr) {
    if (at.get() == GST_OBJECT(parts_->pipeline.get())) return false;
    at.reset(gst_object_get_parent(at.get()));
  }
  return true; // marked, or a part that its decoder has let go
}

std::string GaplessPipeline::MediaType(int track) const {
  const std::shared_ptr<TrackDecoder> found = Find(track);
  return found ? gst_media::MediaType(found->Decoder()) : std::string();
}

std::optional<TrackDecoder::Tags> GaplessPipeline::NewTags(int track) {
  const std::shared_ptr<TrackDecoder> found = Find(track);
  return found ? found->NewTags() : std::nullopt;
}

GaplessPipeline::Clock::time_point GaplessPipeline::LastBytes() const {
  Clock::time_point last;
  for (const auto& [number, track] : parts_->tracks)
    last = std::max(last, track->LastBytes());
  return last;
}

std::optional<std::int64_t> GaplessPipeline::HeardNow() const {
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

std::optional<double> GaplessPipeline::Length() const {
  std::int64_t length = 0;
  if (gst_element_query_duration(parts_->pipeline.get(), GST_FORMAT_TIME, &length) == FALSE ||
      length <= 0)
    return std::nullopt;
  return static_cast<double>(length) / kSecond;
}

std::optional<double> GaplessPipeline::TrackLength(int track) const {
  const std::shared_ptr<TrackDecoder> found = Find(track);
  return found ? found->Length() : std::nullopt;
}

bool GaplessPipeline::CanSeek() const {
  const std::unique_ptr<GstQuery, ReleasedBy<gst_query_unref>> query(
      gst_query_new_seeking(GST_FORMAT_TIME));
  if (gst_element_query(parts_->pipeline.get(), query.get()) == FALSE) return false;
  gboolean can = FALSE;
  gst_query_parse_seeking(query.get(), nullptr, &can, nullptr, nullptr);
  return can != FALSE;
}

AnalysisTap& GaplessPipeline::Tap() {
  return *parts_->tap;
}

} // namespace halvenor
