// Threads that draw the bands of a picture.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace halvenor::raster {

/// Sleep when there is nothing to draw and end with their owner. Used by one thread at a time.
class Workers {
public:
  Workers() = default;
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  /// Work on `threads` threads, the caller's among them; 0: as many as there are cores. They are
  /// made when they are first needed; those that cannot be made are done without.
  void SetThreads(int threads);

  /// The number of threads that may call a task at once; they are numbered from 0.
  [[nodiscard]] int Threads() const { return threads_; }

  /// Calls `task(ticket, thread)` for every ticket from 0 to `count` - 1, each once, on whichever
  /// thread comes to take it, and returns when all calls have. A thread that is late finds no
  /// ticket left, and nobody waits for it.
  using Task = std::function<void(int ticket, int thread)>;
  void Run(int count, const Task& task);

private:
  void Start();
  void Stop();
  void Loop(int thread);
  void TakeTickets(std::uint32_t job, int thread);

  int threads_ = 1;
  std::vector<std::thread> pool_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool ends_ = false;
  /// The job's number above, the next ticket below: a ticket of an earlier job cannot be taken.
  std::atomic<std::uint64_t> next_ = 0;
  std::atomic<int> count_ = 0;
  std::atomic<int> finished_ = 0;
  std::atomic<const Task*> task_ = nullptr;
};

} // namespace halvenor::raster
