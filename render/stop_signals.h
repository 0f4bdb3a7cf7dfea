// The signals by which people and systems end the program.
#pragma once

namespace halvenor::render {

/// While it lives, SIGINT, SIGTERM and SIGHUP only leave a mark; a write to a closed pipe and one
/// beyond a file size limit fail with a status. Make it before any thread, so that all threads
/// leave these signals to the one that asks.
class StopSignals {
public:
  StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// The signal that arrived first, or 0. Any thread.
  static int Arrived();

  /// While it lives, system calls of this thread that wait end with EINTR when a signal arrives.
  class Interruptible {
  public:
    Interruptible();
    ~Interruptible();
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;
  };
};

} // namespace halvenor::render
