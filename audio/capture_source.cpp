#include "audio/capture_source.h"

#include "audio/captured_records.h"
#include "audio/pending_calls.h"
#include "audio/pulse_connection.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace halvenor {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kLongestWait = 250ms; // without a record; then silence is told
constexpr auto kRetryPause = 1s;     // also how long a chosen source may be away unnoticed
constexpr auto kNoSignalAfter = 2s;
constexpr float kLeastSignal = 0.0001F; // -80 dBFS
constexpr auto kMostLatency = 2s;       // that is believed at once
constexpr int kMostDoubts = 20;         // in a row, before the stream is opened again
constexpr auto kReopenPause = 30s;      // if it really is that late

// Half of it becomes the latency of the device: a compromise between being early enough and waking
// the device too often.
constexpr std::uint32_t kFragment = kAnalysisRate / 1000 * 20 * 2 * sizeof(float);

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
  Impl(SoundServer& theServer, Listener& listener) : server(theServer), calls(listener) {}

  SoundServer& server;
  PendingCalls<Listener> calls;
  std::string chosen;
  State state = State::Closed;
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

  CapturedRecords captured;
  int doubts = 0; // of the stream's latency, in a row
  Clock::time_point nextReopening{};
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
  void TellRecords();
  void Tell(const RenderVisualData& record, float peak);
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
  calls.Add([there, name = chosen](Listener& listener) {
    there ? listener.ChosenSourceBack(name) : listener.ChosenSourceGone(name);
  });
}

/// Brings the stream to where it belongs.
void CaptureSource::Impl::Follow() {
  const std::optional<SoundSource> target = Target();
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

void CaptureSource::Impl::Drop() {
  stream.reset();
  source.reset();
  ready = false;
  captured.Restart();
  doubts = 0;
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
  if (!IsReady()) return;
  const Clock::time_point now = Clock::now();
  pa_usec_t latency = 0;
  int negative = 0;
  if (pa_stream_readable_size(stream.get()) > 0) {
    // A server that has not said it yet is taken to have none.
    pa_stream_get_latency(stream.get(), &latency, &negative);
    const std::chrono::microseconds span(latency);
    captured.Observe(negative != 0 ? now + span : now - span);
    // After a server has hung for so long that sound was lost, all that follows counts as late.
    doubts = negative == 0 && span > kMostLatency ? doubts + 1 : 0;
  }
  const void* data = nullptr;
  std::size_t size = 0;
  while (pa_stream_peek(stream.get(), &data, &size) == 0 && size > 0) {
    const std::size_t count = size / sizeof(float);
    if (data != nullptr) {
      captured.Take({static_cast<const float*>(data), count});
    } else { // a hole
      captured.TakeSilence(count);
    }
    pa_stream_drop(stream.get());
  }
  if (doubts > kMostDoubts && now >= nextReopening) {
    nextReopening = now + kReopenPause;
    Drop();
  }
}

void CaptureSource::Impl::TellRecords() {
  const Clock::time_point now = Clock::now();
  while (const auto due = captured.Next(now, offset))
    Tell(due->record, due->peak);
  if (now - lastTold < kLongestWait) return;
  Tell(SilentRecord(), 0);
  // The next silence is due after one record's time.
  lastTold = now - kLongestWait + kRecordTime;
}

void CaptureSource::Impl::Tell(const RenderVisualData& record, float peak) {
  lastTold = Clock::now();
  if (peak > kLeastSignal) lastSignal = lastTold;
  calls.Add([record](Listener& listener) { listener.Record(record); });
  calls.Add([peak](Listener& listener) { listener.Level(MeterLevel(peak)); });
}

CaptureSource::State CaptureSource::Impl::FindState() const {
  const Clock::time_point now = Clock::now();
  if (IsReady()) {
    if (now - lastSignal <= kNoSignalAfter) return State::Listening;
    const SoundSource* known = Find(source->name);
    return known != nullptr && known->isMuted ? State::Muted : State::NoSignal;
  }
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
  calls.Add([found, description = lastDescription](Listener& listener) {
    listener.StateChanged(found, description);
  });
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
  impl_->calls.Clear();
  impl_->Drop();
  impl_->captured.ResetGain();
  impl_->state = State::Closed;
}

void CaptureSource::Poll() {
  if (impl_->state == State::Closed) return;
  impl_->Follow();
  impl_->ReadSound();
  impl_->TellRecords();
  impl_->TellState();
  impl_->calls.Deliver();
}

void CaptureSource::SetOffset(int milliseconds) {
  impl_->offset = std::chrono::milliseconds(std::clamp(milliseconds, -kMostOffset, kMostOffset));
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
