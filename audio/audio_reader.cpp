#include "audio/audio_reader.h"

#include "audio/gst_media.h"

#include <gst/app/gstappsink.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <vector>

namespace halvenor {

namespace {

using namespace gst_media;

constexpr GstClockTime kPatience = 100 * GST_MSECOND;

/// Containers whose header gives the length of the sound, as GStreamer names them, and by how many
/// seconds the decoded sound may fall short of it.
struct ExactContainer {
  std::string_view mediaType;
  double tolerance;
};
constexpr std::array kExactContainers{
    ExactContainer{"audio/x-flac", 0.02},
    ExactContainer{"audio/x-m4a", 0.2},
};

struct Stored {
  AnalyzedSound analyzed;
  std::array<float, 2 * kFramesPerRecord> sound;
};

} // namespace

struct AudioReader::Decoder {
  Medium medium;
  AudioReaderOptions options;
  MediaTags tags;
  Element pipeline;
  Element sink;
  Bus bus;
  std::optional<double> total; // seconds, from the header
  std::string error;
  std::optional<MissingSound> missingSound;

  Sample sample;         // being fed
  std::size_t used = 0;  // values of `sample` that have been fed
  std::int64_t lead = 0; // frames to skip, or (negative) frames of silence to insert
  bool started = false;  // `lead` is known
  bool ended = false;
  std::uint64_t fed = 0; // frames that the analyzer has
  std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();

  // A feed yields at most one record and the end at most two more.
  std::vector<Stored> ready;
  std::size_t taken = 0;
  Analyzer analyzer{[this](const AnalyzedSound& analyzed) { Store(analyzed); }};

  ~Decoder();
  bool Open();
  bool WaitFor(GstMessageType wanted);
  bool HandleMessage(GstMessage* message);
  bool SeekToStart();
  void FindLength();

  void Store(const AnalyzedSound& analyzed);
  void Advance();
  bool Fetch();
  void Align();
  void Feed();
  void FeedFrames(std::span<const float> sound);
  void Finish();
  void CheckLength();
  void Fail(const std::string& text);
};

AudioReader::Decoder::~Decoder() {
  if (pipeline) gst_element_set_state(pipeline.get(), GST_STATE_NULL);
}

void AudioReader::Decoder::Fail(const std::string& text) {
  if (error.empty()) error = About(medium.name, text);
}

bool AudioReader::Decoder::Open() {
  ready.reserve(3);
  tags.title = medium.title;
  pipeline = MakePipeline(std::string(kDecoder) + " ! " + kToAnalysis +
                              " ! appsink name=sink sync=false max-buffers=8",
                          error);
  if (!pipeline) return false;
  g_object_set(Part(pipeline.get(), "decoder").get(), "uri", medium.uri.c_str(), nullptr);
  sink = Part(pipeline.get(), "sink");
  bus.reset(gst_element_get_bus(pipeline.get()));
  gst_element_set_state(pipeline.get(), GST_STATE_PAUSED);
  if (!WaitFor(GST_MESSAGE_ASYNC_DONE)) return false;
  FindLength();
  if (!SeekToStart()) return false;
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  if (options.durationSeconds)
    limit = static_cast<std::uint64_t>(
        std::llround(std::max(0.0, *options.durationSeconds) * kAnalysisRate));
  return true;
}

/// Handles the bus until a message of the wanted kind comes; false after a failure.
bool AudioReader::Decoder::WaitFor(GstMessageType wanted) {
  for (;;) {
    const Message message(gst_bus_timed_pop(bus.get(), kPatience));
    if (message && !HandleMessage(message.get())) return false;
    if (message && GST_MESSAGE_TYPE(message.get()) == wanted) return true;
    if (options.canceled && options.canceled()) {
      Fail("given up");
      return false;
    }
  }
}

bool AudioReader::Decoder::HandleMessage(GstMessage* message) {
  std::string missing;
  if (ExplainMissingDecoder(message, missing)) {
    Fail(missing);
  } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
    Fail(Explain(message));
    return false;
  } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_TAG) {
    TakeTags(message, tags);
  }
  return true;
}

void AudioReader::Decoder::FindLength() {
  std::int64_t length = 0;
  if (gst_element_query_duration(pipeline.get(), GST_FORMAT_TIME, &length) != FALSE && length > 0)
    total = static_cast<double>(length) / kSecond;
}

/// Media that cannot seek are decoded from their start, and `Align` skips what comes before.
bool AudioReader::Decoder::SeekToStart() {
  if (options.startSeconds <= 0) return true;
  const auto start = static_cast<std::int64_t>(options.startSeconds * kSecond);
  const auto flags = static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE);
  if (gst_element_seek_simple(pipeline.get(), GST_FORMAT_TIME, flags, start) == FALSE) return true;
  return WaitFor(GST_MESSAGE_ASYNC_DONE);
}

void AudioReader::Decoder::Store(const AnalyzedSound& analyzed) {
  Stored& stored = ready.emplace_back();
  stored.analyzed = analyzed;
  std::copy(analyzed.sound.begin(), analyzed.sound.end(), stored.sound.begin());
  stored.analyzed.sound = {stored.sound.data(), analyzed.sound.size()};
}

/// One step toward the next record or the end.
void AudioReader::Decoder::Advance() {
  if (fed >= limit) {
    Finish();
  } else if (sample || Fetch()) {
    Feed();
  }
}

/// Waits a moment for the next sample; a failure or the end finishes the reader.
bool AudioReader::Decoder::Fetch() {
  GstAppSink* from = GST_APP_SINK(sink.get());
  sample.reset(gst_app_sink_try_pull_sample(from, 0));
  if (!sample) {
    while (const Message message{gst_bus_pop(bus.get())})
      HandleMessage(message.get());
    if (error.empty()) sample.reset(gst_app_sink_try_pull_sample(from, kPatience));
  }
  used = 0;
  if (sample) {
    if (!started) Align();
    return true;
  }
  if (options.canceled && options.canceled()) Fail("given up");
  if (error.empty() && gst_app_sink_is_eos(from) == FALSE) return false;
  if (error.empty()) CheckLength();
  Finish();
  return false;
}

/// Finds how far the first sample lies from the start that was asked for. A gap of many seconds
/// means that the medium's times do not begin at zero.
void AudioReader::Decoder::Align() {
  constexpr double kLongestLead = 10 * kSecond;
  started = true;
  const std::optional<std::int64_t> time = StreamTime(sample.get());
  if (!time) return;
  const double early = std::max(0.0, options.startSeconds) * kSecond - static_cast<double>(*time);
  if (early > -kLongestLead) lead = std::llround(early / kSecond * kAnalysisRate);
}

void AudioReader::Decoder::Feed() {
  static constexpr std::array<float, 2 * kFramesPerRecord> kSilence{};
  constexpr auto kMost = static_cast<std::int64_t>(kFramesPerRecord);
  if (lead < 0) {
    const std::int64_t frames = std::min(-lead, kMost);
    lead += frames;
    FeedFrames(std::span(kSilence).first(static_cast<std::size_t>(2 * frames)));
    return;
  }
  const Frames frames(sample.get());
  std::span<const float> rest = frames.Values().subspan(used);
  const std::size_t skipped = std::min(rest.size() / 2, static_cast<std::size_t>(lead));
  lead -= static_cast<std::int64_t>(skipped);
  rest = rest.subspan(2 * skipped);
  const std::span<const float> now = rest.first(std::min(rest.size(), 2 * kFramesPerRecord));
  used += 2 * skipped + now.size();
  FeedFrames(now);
  if (now.size() == rest.size()) sample.reset();
}

void AudioReader::Decoder::FeedFrames(std::span<const float> sound) {
  const std::uint64_t frames = std::min<std::uint64_t>(sound.size() / 2, limit - fed);
  analyzer.Push(sound.first(static_cast<std::size_t>(2 * frames)));
  fed += frames;
}

void AudioReader::Decoder::CheckLength() {
  const double reached =
      std::max(0.0, options.startSeconds) + static_cast<double>(fed) / kAnalysisRate;
  if (fed == 0) {
    Fail(options.startSeconds > 0 ? "ends before the start that was asked for"
                                  : "contains no sound");
    return;
  }
  FindLength(); // some kinds know better at the end
  const double promised = std::max(total.value_or(0), PromisedByHeader(medium.path).value_or(0));
  const std::string type = MediaType(pipeline.get());
  for (const ExactContainer& container : kExactContainers)
    if (container.mediaType == type && reached + container.tolerance < promised)
      missingSound = MissingSound{promised, promised - reached};
  if (!missingSound) missingSound = FindMissingSound(promised, reached);
}

void AudioReader::Decoder::Finish() {
  sample.reset();
  analyzer.Flush();
  ended = true;
}

std::unique_ptr<AudioReader> AudioReader::Open(const std::string& medium,
                                               const AudioReaderOptions& options,
                                               std::string& error) {
  if (!Start(error)) return nullptr;
  std::optional<Medium> found = Find(medium, error);
  if (!found) return nullptr;
  auto decoder = std::make_unique<Decoder>();
  decoder->medium = std::move(*found);
  decoder->options = options;
  if (!std::isfinite(options.startSeconds)) decoder->options.startSeconds = 0;
  if (!decoder->Open()) {
    error = decoder->error;
    return nullptr;
  }
  return std::unique_ptr<AudioReader>(new AudioReader(std::move(decoder)));
}

AudioReader::AudioReader(std::unique_ptr<Decoder> decoder) : decoder_(std::move(decoder)) {}

AudioReader::~AudioReader() = default;

const MediaTags& AudioReader::Tags() const {
  return decoder_->tags;
}

std::optional<double> AudioReader::Length() const {
  const AudioReaderOptions& options = decoder_->options;
  if (!decoder_->total) decoder_->FindLength(); // some kinds tell only after a while
  if (!decoder_->total) return options.durationSeconds;
  const double rest = *decoder_->total - std::max(0.0, options.startSeconds);
  return std::min(rest, options.durationSeconds.value_or(rest));
}

const AnalyzedSound* AudioReader::Next() {
  Decoder& decoder = *decoder_;
  if (decoder.taken == decoder.ready.size()) {
    decoder.ready.clear();
    decoder.taken = 0;
    while (decoder.ready.empty() && !decoder.ended)
      decoder.Advance();
    if (decoder.ready.empty()) return nullptr;
  }
  return &decoder.ready[decoder.taken++].analyzed;
}

const std::string& AudioReader::Error() const {
  return decoder_->error;
}

std::optional<MissingSound> AudioReader::Missing() const {
  return decoder_->missingSound;
}

} // namespace halvenor
