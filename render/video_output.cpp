// Video files with sound, encoded and multiplexed by GStreamer.
#include "audio/analyzer.h"
#include "audio/gst_media.h"
#include "files/pending_file.h"
#include "files/released_by.h"
#include "render/output.h"
#include "render/stop_signals.h"
#include "render/video_file_times.h"

#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace halvenor::render {
namespace {

using gst_media::Bus;
using gst_media::Caps;
using gst_media::Element;
using gst_media::Message;

// The number of encoder threads is fixed, since it decides about the bytes; with a rate buffer so
// would their timing.
constexpr const char* kH264 = "x264enc pass=qual quantizer=18 speed-preset=faster threads=4 "
                              "vbv-buf-capacity=0 ! "
                              "video/x-h264,profile=high";
constexpr const char* kVp9 = "vp9enc deadline=1 cpu-used=6 threads=4 row-mt=true "
                             "end-usage=cq cq-level=24 target-bitrate=20000000";
constexpr const char* kAac = "avenc_aac bitrate=256000 ! aacparse";
constexpr const char* kOpus = "audioresample ! audio/x-raw,rate=48000 ! opusenc bitrate=192000";

struct Format {
  OutputKind kind;
  const char* muxer;
  const char* video;
  const char* sound;
  /// What the sound encoder puts before its sound without saying so in the file, frames.
  std::size_t soundDelay;
};
constexpr Format kFormats[] = {
    {OutputKind::Mp4, "mp4mux", kH264, kAac, 1024},
    {OutputKind::WebM, "webmmux", kVp9, kOpus, 0},
    {OutputKind::Matroska, "matroskamux", kH264, kOpus, 0},
};

// How far the frames may be ahead of their encoder.
constexpr std::size_t kMaxAheadBytes = 64 << 20;
constexpr std::size_t kMaxAheadFrames = 8;

const Format& FormatOf(OutputKind kind) {
  return *std::find_if(std::begin(kFormats), std::end(kFormats),
                       [&](const Format& format) { return format.kind == kind; });
}

std::string Describe(const Format& format, bool hasSound) {
  std::string text = std::string(format.muxer) +
                     " name=muxer ! filesink name=file "
                     "appsrc name=frames format=time max-bytes=0 ! videoconvert ! "
                     "video/x-raw,format=I420,colorimetry=bt709 ! " +
                     format.video + " ! muxer. ";
  // The muxer takes sound and pictures in step. The pictures lag behind in their encoder; what
  // waits here meanwhile is small.
  if (hasSound)
    text += std::string("appsrc name=sound format=time max-bytes=0 ! audioconvert ! ") +
            format.sound + " ! queue max-size-buffers=0 max-size-bytes=0 max-size-time=0 ! muxer. ";
  return text;
}

class VideoOutput final : public Output {
public:
  VideoOutput(const Options& options, PendingFile file)
      : options_(options), frameBytes_(FrameBytes(options)),
        maxAhead_(std::clamp(kMaxAheadBytes / frameBytes_, std::size_t{2}, kMaxAheadFrames)),
        file_(std::move(file)), soundToSkip_(FormatOf(options.outputKind).soundDelay) {}
  ~VideoOutput() override;

  bool Start(bool hasSound);
  std::span<std::uint8_t> NextFrame() override;
  bool FinishFrame() override;
  bool Sound(std::span<const float> sound) override;
  bool EndSound() override;
  bool Finish() override;

private:
  bool Fail(const std::string& text);
  bool Fail(GstMessage* message);
  bool WaitForRoom();
  bool WaitForEnd();
  void FixCreationTime();
  bool MakePool(GstCaps* caps);

  const Options options_;
  const std::size_t frameBytes_;
  const std::size_t maxAhead_;
  PendingFile file_;
  Element pipeline_;
  Bus bus_;
  Element frames_;
  Element sound_; ///< null without sound, and when it has ended
  std::unique_ptr<GstBufferPool, ReleasedBy<gst_object_unref>> pool_;
  GstBuffer* frame_ = nullptr; ///< being filled in, mapped as `map_`
  GstMapInfo map_{};
  std::uint64_t frameCount_ = 0;
  std::size_t soundToSkip_;
  std::uint64_t soundFrames_ = 0;
};

VideoOutput::~VideoOutput() {
  if (frame_) {
    gst_buffer_unmap(frame_, &map_);
    gst_buffer_unref(frame_);
  }
  if (pipeline_) gst_element_set_state(pipeline_.get(), GST_STATE_NULL);
  if (pool_) gst_buffer_pool_set_active(pool_.get(), FALSE);
}

bool VideoOutput::Fail(const std::string& text) {
  error_ = text;
  return false;
}

bool VideoOutput::Fail(GstMessage* message) {
  GError* raw = nullptr;
  gchar* rawDetails = nullptr;
  gst_message_parse_error(message, &raw, &rawDetails);
  const std::unique_ptr<GError, ReleasedBy<g_error_free>> problem(raw);
  const gst_media::Text details(rawDetails);
  if (g_error_matches(raw, GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NO_SPACE_LEFT))
    return Fail(CannotWrite(file_.Name(), ENOSPC));
  // The file's own errors say why on the last line of the details.
  std::string reason = raw->message;
  if (raw->domain == GST_RESOURCE_ERROR && details) {
    const std::string_view all(details.get());
    reason = all.substr(all.rfind('\n') + 1);
  }
  return Fail("cannot write " + file_.Name() + ": " + reason);
}

// The muxers would write the present time.
void VideoOutput::FixCreationTime() {
  const Element muxer(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "muxer"));
  if (!g_object_class_find_property(G_OBJECT_GET_CLASS(muxer.get()), "creation-time")) return;
  GDateTime* const fixed = g_date_time_new_utc(2001, 1, 1, 0, 0, 0);
  g_object_set(muxer.get(), "creation-time", fixed, nullptr);
  g_date_time_unref(fixed);
}

bool VideoOutput::MakePool(GstCaps* caps) {
  pool_.reset(gst_buffer_pool_new());
  GstStructure* const config = gst_buffer_pool_get_config(pool_.get());
  gst_buffer_pool_config_set_params(config, caps, static_cast<guint>(frameBytes_), 0, 0);
  return gst_buffer_pool_set_config(pool_.get(), config) &&
         gst_buffer_pool_set_active(pool_.get(), TRUE);
}

bool VideoOutput::Start(bool hasSound) {
  if (!gst_media::Start(error_)) return false;
  const Format& format = FormatOf(options_.outputKind);
  g_random_set_seed(1); // some muxers name their tracks by random numbers as they are made
  GError* raw = nullptr;
  pipeline_.reset(gst_parse_launch_full(Describe(format, hasSound).c_str(), nullptr,
                                        GST_PARSE_FLAG_FATAL_ERRORS, &raw));
  const std::unique_ptr<GError, ReleasedBy<g_error_free>> problem(raw);
  if (!pipeline_)
    return Fail("cannot encode " + file_.Name() + ": " + problem->message +
                " (a GStreamer plug-in is missing)");
  bus_.reset(gst_element_get_bus(pipeline_.get()));
  frames_.reset(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "frames"));
  if (hasSound) sound_.reset(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "sound"));

  const Caps pictures(
      gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "RGBA", "width", G_TYPE_INT,
                          options_.width, "height", G_TYPE_INT, options_.height, "framerate",
                          GST_TYPE_FRACTION, static_cast<int>(options_.frameRate.numerator),
                          static_cast<int>(options_.frameRate.denominator), nullptr));
  gst_app_src_set_caps(GST_APP_SRC(frames_.get()), pictures.get());
  if (sound_) {
    const Caps sound(gst_caps_from_string(
        "audio/x-raw,format=" GST_AUDIO_NE(F32) ",rate=44100,"
                                                "channels=2,layout=interleaved"));
    gst_app_src_set_caps(GST_APP_SRC(sound_.get()), sound.get());
  }
  const Element file(gst_bin_get_by_name(GST_BIN(pipeline_.get()), "file"));
  g_object_set(file.get(), "location", file_.Path().c_str(), nullptr);
  if (!MakePool(pictures.get())) return Fail("no memory for frames of this size");
  FixCreationTime();
  gst_element_set_state(pipeline_.get(), GST_STATE_PLAYING);
  return true;
}

// Waits on the bus: an error there is the one thing that could keep the encoder from catching up.
bool VideoOutput::WaitForRoom() {
  constexpr GstClockTime kEncoderPatience = 2 * GST_MSECOND;
  GstClockTime wait = 0;
  do {
    if (const Message message(gst_bus_timed_pop_filtered(bus_.get(), wait, GST_MESSAGE_ERROR));
        message)
      return Fail(message.get());
    wait = kEncoderPatience;
  } while (gst_app_src_get_current_level_buffers(GST_APP_SRC(frames_.get())) >= maxAhead_);
  return true;
}

std::span<std::uint8_t> VideoOutput::NextFrame() {
  if (!WaitForRoom()) return {};
  if (gst_buffer_pool_acquire_buffer(pool_.get(), &frame_, nullptr) != GST_FLOW_OK ||
      !gst_buffer_map(frame_, &map_, GST_MAP_WRITE)) {
    Fail("no memory for frames of this size");
    return {};
  }
  return {map_.data, frameBytes_};
}

bool VideoOutput::FinishFrame() {
  gst_buffer_unmap(frame_, &map_);
  GstBuffer* const frame = std::exchange(frame_, nullptr);
  GST_BUFFER_PTS(frame) = TimeOfFrame(frameCount_, options_.frameRate);
  GST_BUFFER_DURATION(frame) =
      TimeOfFrame(frameCount_ + 1, options_.frameRate) - GST_BUFFER_PTS(frame);
  ++frameCount_;
  gst_app_src_push_buffer(GST_APP_SRC(frames_.get()), frame); // a failure also comes by the bus
  return true;
}

bool VideoOutput::Sound(std::span<const float> sound) {
  // An encoder's delay is made up for at the start, where it takes the place of as much sound.
  const std::size_t skipped = std::min(soundToSkip_, sound.size() / 2);
  soundToSkip_ -= skipped;
  sound = sound.subspan(2 * skipped);
  if (!sound_ || sound.empty()) return true;
  GstBuffer* const buffer = gst_buffer_new_allocate(nullptr, sound.size_bytes(), nullptr);
  if (!buffer) return Fail("no memory for the sound");
  gst_buffer_fill(buffer, 0, sound.data(), sound.size_bytes());
  const auto time = [](std::uint64_t frames) {
    return gst_util_uint64_scale(frames, GST_SECOND, kAnalysisRate);
  };
  GST_BUFFER_PTS(buffer) = time(soundFrames_);
  soundFrames_ += sound.size() / 2;
  GST_BUFFER_DURATION(buffer) = time(soundFrames_) - GST_BUFFER_PTS(buffer);
  gst_app_src_push_buffer(GST_APP_SRC(sound_.get()), buffer);
  return true;
}

bool VideoOutput::EndSound() {
  if (sound_) gst_app_src_end_of_stream(GST_APP_SRC(sound_.get()));
  sound_.reset();
  return true;
}

bool VideoOutput::WaitForEnd() {
  constexpr GstClockTime kGlance = 100 * GST_MSECOND;
  constexpr auto kEnds = static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS);
  while (StopSignals::Arrived() == 0) {
    const Message message(gst_bus_timed_pop_filtered(bus_.get(), kGlance, kEnds));
    if (!message) continue;
    return GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_EOS || Fail(message.get());
  }
  return Fail("interrupted");
}

bool VideoOutput::Finish() {
  EndSound();
  gst_app_src_end_of_stream(GST_APP_SRC(frames_.get()));
  if (!WaitForEnd()) return false;
  gst_element_set_state(pipeline_.get(), GST_STATE_NULL); // closes the file
  if (options_.outputKind == OutputKind::Mp4 && !ClearMp4Times(file_.Descriptor()))
    return Fail(CannotWrite(file_.Name(), errno));
  return file_.Commit() || Fail(file_.Problem());
}

} // namespace

std::unique_ptr<Output> OpenVideoOutput(const Options& options, bool hasSound, std::string& error) {
  PendingFile file = PendingFile::Create(options.output);
  if (!file) {
    error = file.Problem();
    return nullptr;
  }
  auto output = std::make_unique<VideoOutput>(options, std::move(file));
  if (output->Start(hasSound)) return output;
  error = output->Error();
  return nullptr;
}

} // namespace halvenor::render
