#include "host/capture_source.h"

#include "host/analyser.h"
#include "host/automatic_gain.h"
#include "host/pulse_connection.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <optional>
#include <utility>

namespace halvenor {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using std::chrono::duration_cast;

constexpr auto kRecordTime = std::chrono::milliseconds(kDeliveryMilliseconds);
constexpr auto kStale = 200ms;       // records that are later than this are not told any more
constexpr auto kLongestWait = 250ms; // without a record; then silence is told
constexpr auto kRetryPause = 1s;     // also how long a chosen source may be away unnoticed
constexpr auto kNoSignalAfter = 2s;
constexpr float kLeastSignal = 0.0001F; // -80 dBFS
constexpr float kMeterDecibels = 60;
constexpr std::size_t kMostKept = 128; // records, more than six seconds
constexpr auto kMostLatency = 2s;      // that is believed at once
constexpr int kMostDoubts = 20;        // in a row, before the stream is opened again
constexpr auto kReopenPause = 30s;     // if it really is that late

// Half of it becomes the latency of the device: a compromise between being early enough and waking
// the device too often.
constexpr std::uint32_t kFragment = kAnalysisRate / 1000 * 20 * 2 * sizeof(float);

/// Gain is applied, and peaks are found, in pieces of 10 ms.
constexpr std::size_t kPiece = 441;
static_assert(kFramesPerRecord % kPiece == 0);

float Meter(float peak) {
  if (!(peak > 0)) return 0;
  return std::clamp(1 + 20 * std::log10(peak) / kMeterDecibels, 0.0F, 1.0F);
}

const RenderVisualData& SilentRecord() {
  static const RenderVisualData record = [] {
    RenderVisualData silent{};
    silent.numWaveformChannels = silent.numSpectrumChannels = kAudioChannels;
    for (auto& channel : silent.waveform)
      std::ranges::fill(channel, std::uint8_t{128});
    return silent;
  }();
  return record;
}

/// When the frames of a stream are heard, from the latencies reported again and again. Small
/// differences are noise and drift and let it glide; large ones that stay are a jump.
class HeardClock {
public:
  void Reset() { *this = {}; }
  void Observe(std::uint64_t frame, Clock::time_point heard) {
    constexpr auto kLargest = 40ms;
    constexpr int kJumpAfter = 8;
    const Clock::time_point origin = heard - Length(frame);
    const auto difference = origin - origin_.value_or(origin);
    jumping_ = std::chrono::abs(difference) > kLargest ? jumping_ + 1 : 0;
    if (!origin_ || jumping_ > kJumpAfter) {
      origin_ = origin;
    } else if (jumping_ == 0) {
      *origin_ += difference / 16;
    }
  }
  [[nodiscard]] Clock::time_point Heard(std::uint64_t frame) const {
    return origin_.value_or(Clock::time_point{}) + Length(frame);
  }

private:
  static Clock::duration Length(std::uint64_t frames) {
    return duration_cast<Clock::duration>(
        std::chrono::duration<double>(static_cast<double>(frames) / kAnalysisRate));
  }
  std::optional<Clock::time_point> origin_;
  int jumping_ = 0; // observations in a row
};

/// What a stream that is ready listens to.
std::string DeviceName(const pa_stream* stream) {
  const char* name = pa_stream_get_device_name(stream);
  return name != nullptr ? name : "";
}

struct CloseStream {
  void operator()(pa_stream* stream) const {
    pa_stream_disconnect(stream);
    pa_stream_unref(stream);
  }
};

} // namespace

struct CaptureSource::Impl {
  struct Kept {
    std::uint64_t frame; // the record's first
    float peak;
    RenderVisualData record;
  };

  Impl(SoundServer& theServer, Listener& theListener) : server(theServer), listener(theListener) {}

  SoundServer& server;
  Listener& listener;
  std::string chosen;
  State state = State::Closed;
  std::uint64_t opened = 0; // grows with `Open` and `Close`: listeners call them
  Clock::duration offset{};

  std::optional<SoundSource> source; // that the stream is of
  std::string lastDescription;
  std::unique_ptr<pa_stream, CloseStream> stream;
  std::uint64_t serial = 0; // of the stream's connection
  Clock::time_point nextTry{};
  int failures = 0; // tries in a row
  bool ready = false;
  Clock::time_point chosenSeen{};
  bool chosenGone = false; // told
  Clock::time_point connectingSince{};

  AutomaticGain gain;
  Analyser analyser{[this](const AnalysedSound& analysed) { Keep(analysed); },
                    AnalysisWindows::Past};
  HeardClock clock;
  std::uint64_t frames = 0; // of this stream so far
  int doubts = 0;           // of its latency
  Clock::time_point nextReopening{};
  float peak = 0; // of the record under way
  std::deque<Kept> kept;
  Clock::time_point lastTold{};
  Clock::time_point lastSignal{};

  [[nodiscard]] const SoundSource* Find(const std::string& name) const;
  std::optional<SoundSource> Target();
  void TellOfChosen(bool there);
  void Follow();
  void Connect(const SoundSource& target);
  void Drop();
  void DropAndWait();
  [[nodiscard]] bool IsReady() const;
  void ReadSound();
  void Take(std::span<const float> sound);
  void TakePiece(std::span<const float> piece);
  void Keep(const AnalysedSound& analysed);
  void TellRecords();
  void Tell(const RenderVisualData& record, float recordPeak);
  [[nodiscard]] State FindState() const;
  void TellState();
};

const SoundSource* CaptureSource::Impl::Find(const std::string& name) const {
  const auto& sources = server.Sources();
  const auto found = std::ranges::find(sources, name, &SoundSource::name);
  return found != sources.end() ? &*found : nullptr;
}

/// What is to be listened to now. A chosen source may be away for a moment, as when a server starts
/// and brings up one device after the other.
std::optional<SoundSource> CaptureSource::Impl::Target() {
  if (server.CurrentState() != SoundServer::State::Connected) {
    chosenSeen = Clock::now();
    return std::nullopt;
  }
  if (!chosen.empty()) {
    const SoundSource* found = Find(chosen);
    if (found != nullptr) chosenSeen = Clock::now();
    if (found != nullptr || chosenGone || Clock::now() - chosenSeen > kRetryPause)
      TellOfChosen(found != nullptr);
    if (found != nullptr) return *found;
    if (!chosenGone) return std::nullopt;
  }
  const std::optional<SoundOutput> output = server.DefaultOutput();
  const SoundSource* monitor = output ? Find(output->monitor) : nullptr;
  return monitor != nullptr ? std::optional(*monitor) : std::nullopt;
}

void CaptureSource::Impl::TellOfChosen(bool there) {
  if (chosenGone != there) return;
  chosenGone = !there;
  if (there) {
    listener.ChosenSourceBack(std::string(chosen));
  } else {
    listener.ChosenSourceGone(std::string(chosen));
  }
}

/// Brings the stream to where it belongs.
void CaptureSource::Impl::Follow() {
  const std::uint64_t session = opened;
  const std::optional<SoundSource> target = Target();
  if (opened != session) return;
  if (stream && (serial != server.Internals().serial || !server.Internals().context)) Drop();
  if (stream && (!target || !source || target->name != source->name)) {
    Drop();
    nextTry = {};
  }
  if (stream && PA_STREAM_IS_GOOD(pa_stream_get_state(stream.get())) == 0) DropAndWait();
  // Whatever moved it, the stream stays with what it was opened for: never a microphone by chance.
  if (IsReady() && source->name != DeviceName(stream.get())) DropAndWait();
  if (IsReady() && !std::exchange(ready, true)) {
    failures = 0;
    // Whoever was silent before is not called heard for two seconds again.
    lastSignal = std::max(lastSignal, Clock::now() - kNoSignalAfter / 2);
  }
  if (!stream && target && Clock::now() >= nextTry) Connect(*target);
}

void CaptureSource::Impl::Connect(const SoundSource& target) {
  constexpr pa_sample_spec kSound{PA_SAMPLE_FLOAT32NE, kAnalysisRate, kAudioChannels};
  constexpr auto kFlags = static_cast<pa_stream_flags_t>(
      PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY | PA_STREAM_INTERPOLATE_TIMING |
      PA_STREAM_AUTO_TIMING_UPDATE | PA_STREAM_DONT_INHIBIT_AUTO_SUSPEND);
  constexpr auto kServersChoice = static_cast<std::uint32_t>(-1);
  const pa_buffer_attr lengths{kServersChoice, kServersChoice, kServersChoice, kServersChoice,
                               kFragment};
  SoundServer::Connection& connection = server.Internals();
  stream.reset(pa_stream_new(connection.context.get(), "Picture", &kSound, nullptr));
  if (!stream ||
      pa_stream_connect_record(stream.get(), target.name.c_str(), &lengths, kFlags) < 0) {
    DropAndWait();
    return;
  }
  serial = connection.serial;
  source = target;
  lastDescription = target.description;
}

/// The gain stays: it is most likely the same music.
void CaptureSource::Impl::Drop() {
  stream.reset();
  source.reset();
  ready = false;
  analyser.Reset();
  clock.Reset();
  kept.clear();
  frames = 0;
  doubts = 0;
  peak = 0;
  connectingSince = Clock::now();
}

void CaptureSource::Impl::DropAndWait() {
  Drop();
  ++failures;
  nextTry = Clock::now() + kRetryPause;
}

bool CaptureSource::Impl::IsReady() const {
  return stream && pa_stream_get_state(stream.get()) == PA_STREAM_READY;
}

void CaptureSource::Impl::ReadSound() {
  static constexpr std::array<float, 2 * kFramesPerRecord> kSilence{};
  if (!IsReady()) return;
  const Clock::time_point now = Clock::now();
  pa_usec_t latency = 0;
  int negative = 0;
  if (pa_stream_readable_size(stream.get()) > 0) {
    // A server that has not said it yet is taken to have none.
    pa_stream_get_latency(stream.get(), &latency, &negative);
    const std::chrono::microseconds span(latency);
    clock.Observe(frames, negative != 0 ? now + span : now - span);
    // After a server has hung for so long that sound was lost, all that follows counts as late.
    doubts = negative == 0 && span > kMostLatency ? doubts + 1 : 0;
  }
  const void* data = nullptr;
  std::size_t size = 0;
  while (pa_stream_peek(stream.get(), &data, &size) == 0 && size > 0) {
    std::size_t count = size / sizeof(float);
    if (data != nullptr) {
      Take({static_cast<const float*>(data), count});
    } else { // a hole
      for (; count > 0; count -= std::min(count, kSilence.size()))
        Take(std::span(kSilence).first(std::min(count, kSilence.size())));
    }
    pa_stream_drop(stream.get());
  }
  if (doubts > kMostDoubts && now >= nextReopening) {
    nextReopening = now + kReopenPause;
    Drop();
  }
}

void CaptureSource::Impl::Take(std::span<const float> sound) {
  while (sound.size() >= 2) {
    const std::size_t room = kPiece - frames % kPiece;
    const std::size_t count = std::min(room, sound.size() / 2);
    TakePiece(sound.first(2 * count));
    sound = sound.subspan(2 * count);
  }
}

void CaptureSource::Impl::TakePiece(std::span<const float> piece) {
  std::array<float, 2 * kPiece> lifted{};
  std::ranges::copy(piece, lifted.begin());
  for (float& value : lifted) {
    if (!std::isfinite(value)) value = 0;
    peak = std::max(peak, std::fabs(value));
  }
  const std::span<float> now = std::span(lifted).first(piece.size());
  frames += piece.size() / 2;
  gain.Apply(now);
  analyser.Push(now);
}

void CaptureSource::Impl::Keep(const AnalysedSound& analysed) {
  gain.Observe(analysed.record);
  if (kept.size() == kMostKept) kept.pop_front();
  kept.push_back({analysed.index * kFramesPerRecord, std::exchange(peak, 0.0F), analysed.record});
}

void CaptureSource::Impl::TellRecords() {
  const std::uint64_t session = opened;
  const Clock::time_point now = Clock::now();
  while (opened == session && !kept.empty()) {
    const Clock::time_point due = clock.Heard(kept.front().frame) + offset;
    if (due > now) break;
    const Kept next = kept.front();
    kept.pop_front();
    if (due + kRecordTime + kStale >= now) Tell(next.record, next.peak);
  }
  if (opened != session || now - lastTold < kLongestWait) return;
  Tell(SilentRecord(), 0);
  // The next silence is due after one record's time.
  lastTold = now - kLongestWait + kRecordTime;
}

void CaptureSource::Impl::Tell(const RenderVisualData& record, float recordPeak) {
  const std::uint64_t session = opened;
  lastTold = Clock::now();
  if (recordPeak > kLeastSignal) lastSignal = lastTold;
  listener.Record(record);
  if (opened == session) listener.Level(Meter(recordPeak));
}

CaptureSource::State CaptureSource::Impl::FindState() const {
  const Clock::time_point now = Clock::now();
  if (IsReady()) return now - lastSignal > kNoSignalAfter ? State::NoSignal : State::Listening;
  if (now - connectingSince < kRetryPause && failures == 0) return State::Connecting;
  return server.CurrentState() == SoundServer::State::Connected ? State::DeviceGone
                                                                : State::ServerGone;
}

void CaptureSource::Impl::TellState() {
  const State found = FindState();
  if ((found == State::NoSignal || found == State::DeviceGone) && (chosen.empty() || chosenGone))
    server.DoubtDefault();
  if (found == state) return;
  state = found;
  listener.StateChanged(state, std::string(lastDescription));
}

CaptureSource::CaptureSource(SoundServer& server, Listener& listener)
    : impl_(std::make_unique<Impl>(server, listener)) {}

CaptureSource::~CaptureSource() = default;

void CaptureSource::Open(const std::string& name) {
  Close();
  impl_->chosen = name;
  impl_->state = State::Connecting;
  impl_->chosenGone = false;
  impl_->failures = 0;
  impl_->nextTry = {};
  const Clock::time_point now = Clock::now();
  impl_->chosenSeen = impl_->connectingSince = impl_->lastTold = impl_->lastSignal = now;
}

void CaptureSource::Close() {
  ++impl_->opened;
  impl_->Drop();
  impl_->gain.Reset();
  impl_->state = State::Closed;
}

void CaptureSource::Poll() {
  Impl& impl = *impl_;
  const std::uint64_t session = impl.opened;
  if (impl.state != State::Closed) impl.Follow();
  // A listener may have left or opened another.
  if (impl.state == State::Closed || impl.opened != session) return;
  impl.ReadSound();
  impl.TellRecords();
  if (impl.opened == session) impl.TellState();
}

void CaptureSource::SetOffset(int milliseconds) {
  impl_->offset = std::chrono::milliseconds(std::clamp(milliseconds, -2000, 2000));
}

CaptureSource::State CaptureSource::CurrentState() const {
  return impl_->state;
}

const std::string& CaptureSource::Chosen() const {
  return impl_->chosen;
}

SoundSource CaptureSource::Current() const {
  return impl_->source.value_or(SoundSource{});
}

} // namespace halvenor
