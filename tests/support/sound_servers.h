// Sound servers of a suite's own, without sound cards: two silent outputs and a microphone.
#pragma once

#include "tests/support/scratch_folder.h"
#include "tests/support/servers.h"

#include <memory>
#include <string>
#include <vector>

namespace halvenor {

/// PulseAudio or PipeWire in a runtime folder and a home of its own, which the whole process sees
/// while this lives: everything that it starts and opens in the meantime uses this server. One at a
/// time. The outputs are "alpha" (the default) and "beta", the microphone is "mic".
class TestSoundServer {
public:
  enum class Kind { PulseAudio, PipeWire };

  explicit TestSoundServer(Kind kind);
  ~TestSoundServer();
  TestSoundServer(const TestSoundServer&) = delete;
  TestSoundServer& operator=(const TestSoundServer&) = delete;

  /// Starts the server and its devices; whether it answers.
  bool Start();
  /// Ends the server at once, without a word to its clients.
  void Kill();
  /// SIGSTOP and SIGCONT: it hangs, and goes on.
  void Signal(int signal) const;
  /// Runs pactl with these arguments; whether it succeeded.
  [[nodiscard]] bool Control(const std::string& arguments) const;
  /// What pactl says.
  [[nodiscard]] std::string Ask(const std::string& arguments) const;
  bool MakeOutput(const std::string& name);
  bool RemoveOutput(const std::string& name);

  [[nodiscard]] std::string Folder() const { return folder_.Path(); }

private:
  void Run(std::vector<std::string> command);

  Kind kind_;
  ScratchFolder folder_;
  std::vector<std::unique_ptr<ServerProcess>> processes_; // as started
};

/// A child that plays a sound file on an output of the server.
class Playing {
public:
  Playing(const std::string& file, const std::string& output)
      : process_({"paplay", "--device=" + output, file}, -1) {}

private:
  ServerProcess process_;
};

} // namespace halvenor
