#include "tests/audio/slow_speaker.h"

#include <gst/audio/gstaudiosink.h>

#include <mutex>
#include <thread>

namespace halvenor::slow_speaker {
namespace {

constexpr int kRate = 48000;

struct Heard {
  std::mutex mutex;
  std::optional<Clock::time_point> first;
  Clock::time_point written; // when the device takes the next value
  float loudest = 0;         // of what was written last
  bool plugged = true;
};
Heard heard;

struct SlowSpeaker {
  GstAudioSink parent;
};
struct SlowSpeakerClass {
  GstAudioSinkClass parent;
};
G_DEFINE_TYPE(SlowSpeaker, slow_speaker, GST_TYPE_AUDIO_SINK)

GstStaticPadTemplate sinkTemplate = GST_STATIC_PAD_TEMPLATE(
    "sink", GST_PAD_SINK, GST_PAD_ALWAYS,
    GST_STATIC_CAPS("audio/x-raw,format=" GST_AUDIO_NE(F32) ",rate=48000,channels=1"));

gboolean Prepare(GstAudioSink*, GstAudioRingBufferSpec*) {
  const std::scoped_lock lock(heard.mutex);
  heard.written = Clock::now();
  return TRUE;
}

/// Takes as long as the sound lasts; a pause of the writer moves what follows.
int Write(GstAudioSink* self, void* data, unsigned length) {
  const auto* values = static_cast<const float*>(data);
  const unsigned count = length / sizeof(float);
  Clock::time_point end;
  {
    const std::scoped_lock lock(heard.mutex);
    if (!heard.plugged) {
      GST_ELEMENT_ERROR(self, RESOURCE, WRITE, ("unplugged"), (nullptr));
      return -1;
    }
    const auto begin = std::max(heard.written, Clock::now() - std::chrono::milliseconds(20));
    for (unsigned i = 0; i < count && !heard.first; ++i)
      if (values[i] > 0.01F || values[i] < -0.01F)
        heard.first = begin + kLatency + std::chrono::microseconds(i * 1000000ULL / kRate);
    heard.loudest = 0;
    for (unsigned i = 0; i < count; ++i)
      heard.loudest = std::max(heard.loudest, values[i]);
    end = heard.written = begin + std::chrono::microseconds(count * 1000000ULL / kRate);
  }
  std::this_thread::sleep_until(end);
  return static_cast<int>(length);
}

unsigned Delay(GstAudioSink*) {
  return kRate / 1000 * kLatency.count();
}

void slow_speaker_class_init(SlowSpeakerClass* type) {
  auto* element = reinterpret_cast<GstElementClass*>(type);
  gst_element_class_add_static_pad_template(element, &sinkTemplate);
  gst_element_class_set_static_metadata(element, "Slow speaker", "Sink/Audio", "For tests", "-");
  type->parent.open = [](GstAudioSink*) -> gboolean { return TRUE; };
  type->parent.close = [](GstAudioSink*) -> gboolean { return TRUE; };
  type->parent.unprepare = [](GstAudioSink*) -> gboolean { return TRUE; };
  type->parent.prepare = Prepare;
  type->parent.write = Write;
  type->parent.delay = Delay;
}

void slow_speaker_init(SlowSpeaker*) {}

} // namespace

void Register() {
  gst_init(nullptr, nullptr);
  gst_element_register(nullptr, "slowspeaker", GST_RANK_NONE, slow_speaker_get_type());
}

void Reset() {
  const std::scoped_lock lock(heard.mutex);
  heard.first.reset();
  heard.loudest = 0;
  heard.plugged = true;
}

std::optional<Clock::time_point> FirstHeard() {
  const std::scoped_lock lock(heard.mutex);
  return heard.first;
}

float Loudest() {
  const std::scoped_lock lock(heard.mutex);
  return heard.loudest;
}

void Unplug() {
  const std::scoped_lock lock(heard.mutex);
  heard.plugged = false;
}

} // namespace halvenor::slow_speaker
