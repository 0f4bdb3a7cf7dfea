// Where played sound goes. Private to the audio library.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace halvenor {

class SoundServer;

/// Chooses between a given sink, the sound server, a sound card and silence, and notices when a
/// device that was missing or had failed is back.
class OutputChoice {
public:
  using Clock = std::chrono::steady_clock;

  /// As for `MediaPlayer`.
  OutputChoice(std::string audioSink, SoundServer* server);
  ~OutputChoice();
  OutputChoice(const OutputChoice&) = delete;
  OutputChoice& operator=(const OutputChoice&) = delete;

  void Poll();
  /// A GStreamer description of what the sound goes to; none while the server's first answer is
  /// awaited, two seconds from `since` at most.
  std::optional<std::string> Sink(Clock::time_point since);
  /// The device has failed, and the sound goes nowhere from now on; false if it did already.
  bool NoteFailure();
  /// Whether the sound goes nowhere although there is an output again.
  bool IsBack();
  /// Forgets a failure.
  void Reset() { silent_ = false; }

private:
  [[nodiscard]] bool ServerHasOutput() const;

  const std::string audioSink_;
  const std::unique_ptr<SoundServer> ownServer_;
  SoundServer* const server_; // null only where `audioSink_` is given
  bool silent_ = false;       // there is no device, or it has failed
  std::uint64_t serverChanges_ = 0;
};

} // namespace halvenor
