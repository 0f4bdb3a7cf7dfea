#include "audio/track_decoder.h"

#include <algorithm>
#include <utility>

namespace halvenor {

using namespace gst_media;

namespace {

// The application message that the last sound of a track was decoded.
constexpr const char* kDecoded = "halvenor-decoded";

// How much of a network stream is there before it is heard.
constexpr std::int64_t kStreamBuffer = 2 * GST_SECOND;

} // namespace

std::shared_ptr<TrackDecoder> TrackDecoder::Make(int number, const Medium& medium,
                                                 const Element& concat) {
  GstElement* made = gst_element_factory_make("uridecodebin", nullptr);
  if (made == nullptr) return nullptr;
  std::shared_ptr<TrackDecoder> track(new TrackDecoder);
  track->decoder_.reset(GST_ELEMENT(gst_object_ref_sink(made)));
  const Caps caps(gst_caps_new_empty_simple("audio/x-raw"));
  g_object_set(made, "uri", medium.uri.c_str(), "caps", caps.get(), "expose-all-streams", FALSE,
               nullptr);
  track->joint_.reset(gst_element_request_pad_simple(concat.get(), "sink_%u"));
  {
    const std::scoped_lock lock(track->shared_->mutex);
    track->shared_->number = number;
    track->shared_->joint.reset(GST_PAD(gst_object_ref(track->joint_.get())));
  }
  track->Connect(IsNetwork(medium.uri));
  return track;
}

void TrackDecoder::Connect(bool network) {
  // Each closure keeps what it works with.
  const auto connect = [this](const char* signal, GCallback callback) {
    const auto release = [](void* data, GClosure*) {
      delete static_cast<std::shared_ptr<Shared>*>(data);
    };
    GClosure* closure = g_cclosure_new(callback, shared_.get(), nullptr);
    g_closure_add_finalize_notifier(closure, new std::shared_ptr<Shared>(shared_), release);
    g_signal_connect_closure(decoder_.get(), signal, closure, FALSE);
  };
  connect("pad-added", G_CALLBACK(OnPad));
  if (!network) return;
  connect("source-setup", G_CALLBACK(OnSource));
  g_object_set(decoder_.get(), "use-buffering", TRUE, "buffer-duration", kStreamBuffer, nullptr);
}

/// Radio may replace its pad at every title: the new one comes when the old one has gone.
void TrackDecoder::OnPad(GstElement* /*decoder*/, GstPad* pad, Shared* shared) {
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

void TrackDecoder::OnSource(GstElement* /*decoder*/, GstElement* source, Shared* shared) {
  {
    const std::scoped_lock lock(shared->mutex);
    shared->lastBytes = Clock::now();
  }
  const Pad pad(gst_element_get_static_pad(source, "src"));
  if (pad) gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, OnBytes, shared, nullptr);
}

GstPadProbeReturn TrackDecoder::OnBytes(GstPad* /*pad*/, GstPadProbeInfo* /*info*/, void* shared) {
  const std::scoped_lock lock(static_cast<Shared*>(shared)->mutex);
  static_cast<Shared*>(shared)->lastBytes = Clock::now();
  return GST_PAD_PROBE_OK;
}

GstPadProbeReturn TrackDecoder::OnFlow(GstPad* pad, GstPadProbeInfo* info, void* data) {
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

GstPadProbeReturn TrackDecoder::OnEvent(GstPad* pad, GstEvent* event, Shared& shared) {
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

void TrackDecoder::NoteSeekFailed() {
  const std::scoped_lock lock(shared_->mutex);
  ++shared_->seeks;
}

bool TrackDecoder::IsDecoded(GstMessage* message) const {
  const GstStructure* content = gst_message_get_structure(message);
  int seeks = 0;
  return GST_MESSAGE_TYPE(message) == GST_MESSAGE_APPLICATION &&
         GST_MESSAGE_SRC(message) == GST_OBJECT(decoder_.get()) &&
         gst_structure_has_name(content, kDecoded) != FALSE &&
         gst_structure_get_int(content, "seeks", &seeks) != FALSE && seeks >= seeksAsked_;
}

std::optional<TrackDecoder::Tags> TrackDecoder::NewTags() {
  const std::scoped_lock lock(shared_->mutex);
  return std::exchange(shared_->newTags, false) ? std::optional(shared_->tags) : std::nullopt;
}

TrackDecoder::Clock::time_point TrackDecoder::LastBytes() const {
  const std::scoped_lock lock(shared_->mutex);
  return shared_->lastBytes;
}

std::optional<double> TrackDecoder::Length() const {
  std::int64_t length = 0;
  if (gst_pad_peer_query_duration(joint_.get(), GST_FORMAT_TIME, &length) == FALSE || length <= 0)
    return std::nullopt;
  return static_cast<double>(length) / static_cast<double>(GST_SECOND);
}

} // namespace halvenor
