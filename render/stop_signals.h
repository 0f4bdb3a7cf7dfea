// The signals by which people and systems end the program.
#pragma once

#include <thread>

namespace halvenor::render {

/// While it lives, SIGINT, SIGTERM and SIGHUP only leave a mark, and the program has most of a
/// second to end in order; then it ends at once with 128 + the signal, without its temporary files.
/// So it also ends while a library waits. A write to a closed pipe and one beyond a file size limit
/// fail with a status. Make it before any thread, so that all others leave these signals to its
/// own.
class StopSignals {
public:
  /// The exit status of a program that a signal ended is this plus the signal.
  static constexpr int kStatusBase = 128;

  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// The signal that arrived first, or 0. Any thread.
  static int Arrived();
  static bool HaveArrived() { return Arrived() != 0; }

  /// While it lives, system calls of this thread that wait end with EINTR when a signal arrives.
  /// Only the main thread.
  class Interruptible {
  public:
    Interruptible();
    ~Interruptible();
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;
  };

private:
  static void Watch();

  std::thread watcher_;
};

} // namespace halvenor::render
