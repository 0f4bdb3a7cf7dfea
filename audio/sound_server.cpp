#include "audio/sound_server.h"

#include "audio/pulse_connection.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace halvenor {

namespace {

using namespace std::chrono_literals;

constexpr auto kRetryPause = 1s;
constexpr auto kAskPause = 50ms; // servers tell of every turn of a volume knob
constexpr auto kDoubtPause = 5s;
constexpr int kMostDispatches = 100;

std::string TextOf(const char* text) {
  return text != nullptr ? text : "";
}

/// Of a pa_sink_info or a pa_source_info.
template <typename Info>
bool IsMuted(const Info& info) {
  return info.mute != 0 || pa_cvolume_is_muted(&info.volume) != 0;
}

} // namespace

SoundServer::Connection::Connection(std::string name)
    : clientName(std::move(name)), loop(pa_mainloop_new()) {}

SoundServer::Connection::~Connection() {
  Disconnect();
}

void SoundServer::Connection::SetState(State wanted) {
  if (state == wanted) return;
  state = wanted;
  ++changes;
}

SoundServer::Connection::Context SoundServer::Connection::NewContext() const {
  Context made(pa_context_new(pa_mainloop_get_api(loop.get()), clientName.c_str()));
  pa_context_connect(made.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
  return made;
}

/// The lists stay until the newcomer has told its own.
void SoundServer::Connection::Adopt(Context newcomer) {
  context = std::move(newcomer);
  ++serial;
  subscribed_ = false;
  coming_ = {};
}

void SoundServer::Connection::Disconnect() {
  if (!context) return;
  context.reset();
  witness_.reset();
  nextTry_ = Clock::now() + kRetryPause;
  if (lists != Lists{}) ++changes;
  lists = {};
  coming_ = {};
  stale_ = false;
}

void SoundServer::Connection::Poll() {
  if (!context && Clock::now() >= nextTry_) Adopt(NewContext());
  for (int i = 0; i < kMostDispatches && pa_mainloop_iterate(loop.get(), 0, nullptr) > 0; ++i) {
  }
  if (!context) return;
  const pa_context_state_t reached = pa_context_get_state(context.get());
  if (PA_CONTEXT_IS_GOOD(reached) == 0) {
    Disconnect();
    SetState(State::Gone);
    return;
  }
  if (reached != PA_CONTEXT_READY) return;
  Ask();
  HearWitness();
}

/// Asks for the lists when they may have changed, one time after the other.
void SoundServer::Connection::Ask() {
  pa_context* server = context.get();
  if (!subscribed_) {
    const auto changed = [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
      static_cast<Connection*>(self)->stale_ = true;
    };
    pa_context_set_subscribe_callback(server, changed, this);
    constexpr auto kEvents = static_cast<pa_subscription_mask_t>(
        PA_SUBSCRIPTION_MASK_SERVER | PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE);
    pa_operation* asked = pa_context_subscribe(server, kEvents, nullptr, nullptr);
    if (asked != nullptr) pa_operation_unref(asked);
    subscribed_ = stale_ = true;
    nextAsk_ = {};
  }
  if (!stale_ || coming_.missing > 0 || Clock::now() < nextAsk_) return;
  stale_ = false;
  nextAsk_ = Clock::now() + kAskPause;
  coming_ = {};

  const auto takeServer = [](pa_context*, const pa_server_info* info, void* self) {
    auto& connection = *static_cast<Connection*>(self);
    if (info != nullptr) {
      connection.coming_.defaultOutput = TextOf(info->default_sink_name);
      connection.coming_.defaultInput = TextOf(info->default_source_name);
    }
    connection.Take();
  };
  const auto takeSink = [](pa_context*, const pa_sink_info* info, int end, void* self) {
    auto& connection = *static_cast<Connection*>(self);
    if (end != 0) {
      connection.Take();
    } else {
      connection.coming_.outputs.push_back({TextOf(info->name), TextOf(info->description),
                                            TextOf(info->monitor_source_name), IsMuted(*info)});
    }
  };
  const auto takeSource = [](pa_context*, const pa_source_info* info, int end, void* self) {
    auto& connection = *static_cast<Connection*>(self);
    if (end != 0) {
      connection.Take();
    } else {
      const auto kind = info->monitor_of_sink == PA_INVALID_INDEX
                            ? SoundSource::Kind::Microphone
                            : SoundSource::Kind::OutputMonitor;
      connection.coming_.sources.push_back(
          {TextOf(info->name), TextOf(info->description), kind, false, IsMuted(*info)});
    }
  };
  for (pa_operation* asked : {pa_context_get_server_info(server, takeServer, this),
                              pa_context_get_sink_info_list(server, takeSink, this),
                              pa_context_get_source_info_list(server, takeSource, this)}) {
    if (asked == nullptr) continue;
    ++coming_.missing;
    pa_operation_unref(asked);
  }
}

/// One answer is complete. The last one makes the lists current.
void SoundServer::Connection::Take() {
  if (--coming_.missing > 0) return;
  std::vector<SoundSource> sources;
  for (const SoundOutput& output : coming_.outputs) {
    if (output.monitor.empty()) continue;
    const auto monitor = std::ranges::find(coming_.sources, output.monitor, &SoundSource::name);
    sources.push_back({output.monitor, output.description, SoundSource::Kind::OutputMonitor,
                       output.name == coming_.defaultOutput,
                       output.isMuted || (monitor != coming_.sources.end() && monitor->isMuted)});
  }
  for (SoundSource& source : coming_.sources) {
    if (source.kind != SoundSource::Kind::Microphone) continue;
    source.isDefault = source.name == coming_.defaultInput;
    sources.push_back(std::move(source));
  }
  coming_.sources = std::move(sources);
  if (coming_ != lists) {
    lists = std::move(coming_);
    ++changes;
  }
  coming_ = {};
  SetState(State::Connected);
}

void SoundServer::Connection::DoubtDefault() {
  if (state != State::Connected || witness_ || Clock::now() < nextDoubt_) return;
  nextDoubt_ = Clock::now() + kDoubtPause;
  witness_ = NewContext();
  witnessAsked_ = false;
  witnessDefault_.reset();
}

/// Asks the witness once. If it knows better, it becomes the connection; else it may go.
void SoundServer::Connection::HearWitness() {
  if (!witness_) return;
  const pa_context_state_t reached = pa_context_get_state(witness_.get());
  if (PA_CONTEXT_IS_GOOD(reached) == 0) {
    witness_.reset();
  } else if (witnessDefault_) {
    if (*witnessDefault_ != lists.defaultOutput) Adopt(std::move(witness_));
    witness_.reset();
  } else if (reached == PA_CONTEXT_READY && !witnessAsked_) {
    const auto take = [](pa_context*, const pa_server_info* info, void* self) {
      static_cast<Connection*>(self)->witnessDefault_ =
          TextOf(info != nullptr ? info->default_sink_name : nullptr);
    };
    pa_operation* asked = pa_context_get_server_info(witness_.get(), take, this);
    if (asked != nullptr) pa_operation_unref(asked);
    witnessAsked_ = true;
  }
}

SoundServer::SoundServer(std::string clientName)
    : connection_(std::make_unique<Connection>(std::move(clientName))) {}

SoundServer::~SoundServer() = default;

void SoundServer::Poll() {
  connection_->Poll();
}

void SoundServer::DoubtDefault() {
  connection_->DoubtDefault();
}

SoundServer::State SoundServer::CurrentState() const {
  return connection_->state;
}

std::uint64_t SoundServer::Changes() const {
  return connection_->changes;
}

const std::vector<SoundSource>& SoundServer::Sources() const {
  return connection_->lists.sources;
}

const std::vector<SoundOutput>& SoundServer::Outputs() const {
  return connection_->lists.outputs;
}

std::optional<SoundOutput> SoundServer::DefaultOutput() const {
  const auto& [defaultOutput, defaultInput, outputs, sources, missing] = connection_->lists;
  const auto found = std::ranges::find(outputs, defaultOutput, &SoundOutput::name);
  return found != outputs.end() ? std::optional(*found) : std::nullopt;
}

std::optional<std::vector<SoundSource>> ListSoundSources(std::string& error,
                                                         std::chrono::milliseconds patience) {
  SoundServer server;
  const auto end = std::chrono::steady_clock::now() + patience;
  while (server.CurrentState() == SoundServer::State::Connecting &&
         std::chrono::steady_clock::now() < end) {
    server.Poll();
    std::this_thread::sleep_for(2ms);
  }
  if (server.CurrentState() == SoundServer::State::Connected) return server.Sources();
  error = server.CurrentState() == SoundServer::State::Gone ? "there is no sound server"
                                                            : "the sound server does not answer";
  return std::nullopt;
}

} // namespace halvenor
