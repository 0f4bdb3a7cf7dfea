// The sound server (PulseAudio, or PipeWire in its place): whether it is there, its outputs and
// microphones, and which output is the default one.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace halvenor {

/// Something that can be listened to.
struct SoundSource {
  enum class Kind {
    OutputMonitor, ///< what an output plays
    Microphone     ///< any input
  };
  std::string name;        ///< stable over restarts: what to keep and to give to `Open`
  std::string description; ///< for people, UTF-8; of an output without "Monitor of"
  Kind kind = Kind::OutputMonitor;
  bool isDefault = false; ///< the monitor of the default output, or the default microphone
  bool isMuted = false;   ///< it is, or what it is the monitor of; a volume of 0 counts, too

  friend bool operator==(const SoundSource&, const SoundSource&) = default;
};

/// An output as a person knows it.
struct SoundOutput {
  std::string name;        ///< stable over restarts: a key for what is kept per device
  std::string description; ///< for people, UTF-8
  std::string monitor;     ///< the `SoundSource::name` of what it plays
  bool isMuted = false;    ///< or its volume is 0

  friend bool operator==(const SoundOutput&, const SoundOutput&) = default;
};

/// One connection, kept for as long as this lives: while there is no server, or after it is gone,
/// a new connection is tried every second. A server is never started by this.
///
/// One thread makes all calls; none of them waits for the server, and there are no other threads.
class SoundServer {
public:
  enum class State {
    Connecting, ///< the first try has not come to an end
    Connected,  ///< the lists below are complete
    Gone        ///< trying again; the lists are empty
  };

  /// `clientName` is how mixers show the program. The first try begins with the first `Poll`.
  explicit SoundServer(std::string clientName = "Halvenor");
  ~SoundServer();
  SoundServer(const SoundServer&) = delete;
  SoundServer& operator=(const SoundServer&) = delete;

  /// To be called every 10 ms or so.
  void Poll();
  /// To be called while nothing is heard of the default output: PipeWire has connections that it
  /// never tells of a new default, so a new one is asked, every 5 seconds at most.
  void DoubtDefault();

  [[nodiscard]] State CurrentState() const;
  /// Grows with every change of the state, the lists and the default: cheap to compare.
  [[nodiscard]] std::uint64_t Changes() const;

  /// Monitors first, then microphones; each in the server's order.
  [[nodiscard]] const std::vector<SoundSource>& Sources() const;
  [[nodiscard]] const std::vector<SoundOutput>& Outputs() const;
  /// Where sound goes by default; none without a server or without any output.
  [[nodiscard]] std::optional<SoundOutput> DefaultOutput() const;

  /// Private to the audio library.
  struct Connection;
  Connection& Internals() { return *connection_; }

private:
  std::unique_ptr<Connection> connection_;
};

/// The sources there are now, for programs that only list them: waits for the server, `patience`
/// at most. On failure returns none and leaves one line in `error`.
std::optional<std::vector<SoundSource>>
ListSoundSources(std::string& error, std::chrono::milliseconds patience = std::chrono::seconds(3));

} // namespace halvenor
