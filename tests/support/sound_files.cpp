#include "tests/support/sound_files.h"

#include <gst/app/gstappsrc.h>
#include <gst/audio/audio.h>
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <numbers>
#include <vector>

// The sanitizers see our own code but not GStreamer and GLib, which are built without them.
extern "C" {
// NOLINTBEGIN: the sanitizers' names
const char* __tsan_default_options();
const char* __asan_default_options();
const char* __lsan_default_suppressions();
// They see none of those libraries' locks: what is said of accesses within them is noise.
const char* __tsan_default_options() {
  return "ignore_noninstrumented_modules=1";
}
// Whole stacks, so that a leak is suppressed for where it comes from.
const char* __asan_default_options() {
  return "fast_unwind_on_malloc=0";
}
const char* __lsan_default_suppressions() {
  return "leak:ld-linux\n"                         // GLib's table of names, which outgrew its first
         "leak:gst_structure_free\n"               // a web session on its way out
         "leak:gst_device_provider_get_devices\n"; // a search for audio devices without a server
}
// NOLINTEND
}

namespace halvenor {

namespace fs = std::filesystem;

std::function<double(double, int)> Sine(double frequency, double amplitude) {
  return [=](double time, int) {
    return amplitude * std::sin(2 * std::numbers::pi * frequency * time);
  };
}

SoundFolder::SoundFolder() {
  gst_init(nullptr, nullptr);
}

std::string SoundFolder::Write(const std::string& name, const std::string& encoder,
                               const Sound& sound) const {
  const std::string path = Path(name);
  const std::string text =
      "appsrc name=in format=time ! audioconvert dithering=none ! audioresample quality=10 ! " +
      encoder + " ! filesink name=out";
  GError* error = nullptr;
  GstElement* pipeline = gst_parse_launch(text.c_str(), &error);
  EXPECT_EQ(error, nullptr) << error->message;
  GstElement* in = gst_bin_get_by_name(GST_BIN(pipeline), "in");
  GstElement* out = gst_bin_get_by_name(GST_BIN(pipeline), "out");
  g_object_set(out, "location", path.c_str(), nullptr);
  gst_object_unref(out);
  GstCaps* caps =
      gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, GST_AUDIO_NE(F32), "layout",
                          G_TYPE_STRING, "interleaved", "rate", G_TYPE_INT, sound.rate, "channels",
                          G_TYPE_INT, sound.channels, "channel-mask", GST_TYPE_BITMASK,
                          gst_audio_channel_get_fallback_mask(sound.channels), nullptr);
  gst_app_src_set_caps(GST_APP_SRC(in), caps);
  gst_caps_unref(caps);

  std::vector<float> values;
  const auto frames = std::llround(sound.seconds * sound.rate);
  for (long long i = 0; i < frames; ++i)
    for (int channel = 0; channel < sound.channels; ++channel)
      values.push_back(
          static_cast<float>(sound.wave(static_cast<double>(i) / sound.rate, channel)));
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  if (!values.empty()) {
    GstBuffer* buffer = gst_buffer_new_memdup(values.data(), values.size() * sizeof(float));
    GST_BUFFER_PTS(buffer) = 0;
    GST_BUFFER_DURATION(buffer) = static_cast<GstClockTime>(sound.seconds * GST_SECOND);
    gst_app_src_push_buffer(GST_APP_SRC(in), buffer);
  }
  gst_app_src_end_of_stream(GST_APP_SRC(in));
  GstBus* bus = gst_element_get_bus(pipeline);
  GstMessage* end = gst_bus_timed_pop_filtered(
      bus, 60 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  EXPECT_TRUE(end != nullptr && GST_MESSAGE_TYPE(end) == GST_MESSAGE_EOS) << text;
  gst_element_set_state(pipeline, GST_STATE_NULL);
  if (end != nullptr) gst_message_unref(end);
  gst_object_unref(bus);
  gst_object_unref(in);
  gst_object_unref(pipeline);
  return path;
}

std::string SoundFolder::WriteBytes(const std::string& name, const std::string& bytes) const {
  std::ofstream(Path(name), std::ios::binary) << bytes;
  return Path(name);
}

std::string SoundFolder::Truncate(const std::string& path, double share) const {
  std::ifstream file(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  bytes.resize(static_cast<std::size_t>(share * static_cast<double>(bytes.size())));
  return WriteBytes("short-" + fs::path(path).filename().string(), bytes);
}

} // namespace halvenor
