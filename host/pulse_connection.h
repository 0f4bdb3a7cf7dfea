// The connection behind `SoundServer`. Private to the host library.
#pragma once

#include "host/sound_server.h"

#include <pulse/pulseaudio.h>

namespace halvenor {

template <auto Release>
struct PulseRelease {
  template <typename T>
  void operator()(T* object) const {
    Release(object);
  }
};

struct SoundServer::Connection {
  using Clock = std::chrono::steady_clock;

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

  std::string clientName;
  std::unique_ptr<pa_mainloop, PulseRelease<pa_mainloop_free>> loop;
  std::unique_ptr<pa_context, PulseRelease<pa_context_unref>> context; ///< null between tries
  std::uint64_t serial = 0; ///< of the context: streams of an earlier one are dead
  State state = State::Connecting;
  std::uint64_t changes = 0;
  Lists lists;

private:
  void Connect();
  void Disconnect();
  void Ask();
  void Take();
  void SetState(State wanted);

  Clock::time_point nextTry_{};
  Clock::time_point nextAsk_{};
  Lists coming_;
  bool subscribed_ = false;
  bool stale_ = false; ///< something has changed since the lists were asked for
};

} // namespace halvenor
