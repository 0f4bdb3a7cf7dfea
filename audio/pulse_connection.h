// The connection behind `SoundServer`. Private to the audio library.
#pragma once

#include "audio/sound_server.h"

#include <pulse/pulseaudio.h>

namespace halvenor {

template <auto Release>
struct PulseRelease {
  template <typename T>
  void operator()(T* object) const {
    Release(object);
  }
};

struct CloseContext {
  void operator()(pa_context* context) const {
    pa_context_disconnect(context);
    pa_context_unref(context);
  }
};

struct SoundServer::Connection {
  using Clock = std::chrono::steady_clock;
  using Context = std::unique_ptr<pa_context, CloseContext>;

  /// Everything that is asked for together; complete when nothing is missing any more.
  struct Lists {
    std::string defaultOutput, defaultInput; // names
    std::vector<SoundOutput> outputs;
    std::vector<SoundSource> sources;
    int missing = 0; // answers

    friend bool operator==(const Lists&, const Lists&) = default;
  };

  explicit Connection(std::string name);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void Poll();
  void DoubtDefault();

  std::string clientName;
  std::unique_ptr<pa_mainloop, PulseRelease<pa_mainloop_free>> loop;
  Context context;          ///< null between tries
  std::uint64_t serial = 0; ///< of the context: streams of an earlier one are dead
  State state = State::Connecting;
  std::uint64_t changes = 0;
  Lists lists;

private:
  [[nodiscard]] Context NewContext() const;
  void Adopt(Context newcomer);
  void Disconnect();
  void Ask();
  void Take();
  void HearWitness();
  void SetState(State wanted);

  Clock::time_point nextTry_{};
  Clock::time_point nextAsk_{};
  Lists coming_;
  bool subscribed_ = false;
  bool stale_ = false; ///< something has changed since the lists were asked for

  Context witness_; ///< connected later than `context`, to be asked for the default output
  bool witnessAsked_ = false;
  std::optional<std::string> witnessDefault_; ///< its answer
  Clock::time_point nextDoubt_{};
};

} // namespace halvenor
