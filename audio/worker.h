// A thread for what may wait. Private to the audio library.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace halvenor {

/// Runs tasks one after the other, in the order in which they were given, on a thread of its own.
/// `Do` and `Finish` are called by one thread.
class Worker {
public:
  Worker();
  /// Does not wait: what is left is still run, if the process lives long enough.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void Do(std::function<void()> task);
  /// Waits until everything that was given is done, `patience` at most.
  void Finish(std::chrono::milliseconds patience);

private:
  struct Queue;
  std::shared_ptr<Queue> queue_;
};

} // namespace halvenor
