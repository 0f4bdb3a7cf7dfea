#include "raster/workers.h"

#include <algorithm>
#include <system_error>

namespace halvenor::raster {
namespace {

constexpr int kMostThreads = 64;
// Passes of a frame follow each other within microseconds; to sleep between them costs more. Some
// ten microseconds: whoever takes the pictures wants the cores as well.
constexpr int kSpins = 200;

std::uint32_t JobOf(std::uint64_t next) {
  return static_cast<std::uint32_t>(next >> 32);
}

int TicketOf(std::uint64_t next) {
  return static_cast<int>(next & 0xffffffffU);
}

void Pause() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#endif
}

} // namespace

Workers::~Workers() {
  Stop();
}

void Workers::SetThreads(int threads) {
  if (threads <= 0) threads = static_cast<int>(std::thread::hardware_concurrency());
  threads = std::clamp(threads, 1, kMostThreads);
  if (threads == threads_) return;
  Stop();
  threads_ = threads;
}

void Workers::Start() {
  try {
    while (static_cast<int>(pool_.size()) < threads_ - 1)
      pool_.emplace_back(&Workers::Loop, this, static_cast<int>(pool_.size()) + 1);
  } catch (const std::system_error&) {
    threads_ = static_cast<int>(pool_.size()) + 1;
  }
}

void Workers::Stop() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  wake_.notify_all();
  for (std::thread& thread : pool_)
    thread.join();
  pool_.clear();
  ends_ = false;
}

void Workers::TakeTickets(std::uint32_t job, int thread) {
  std::uint64_t next = next_.load(std::memory_order_acquire);
  while (JobOf(next) == job && TicketOf(next) < count_.load(std::memory_order_relaxed)) {
    if (!next_.compare_exchange_weak(next, next + 1, std::memory_order_acq_rel)) continue;
    // The job cannot end before this ticket has, so that its task is there still.
    (*task_.load(std::memory_order_relaxed))(TicketOf(next), thread);
    finished_.fetch_add(1, std::memory_order_release);
    next = next_.load(std::memory_order_acquire);
  }
}

void Workers::Run(int count, const Task& task) {
  if (count <= 0) return;
  if (threads_ == 1 || count == 1) {
    for (int ticket = 0; ticket < count; ++ticket)
      task(ticket, 0);
    return;
  }
  Start();
  const std::uint32_t last = JobOf(next_.load(std::memory_order_relaxed));
  const std::uint32_t job = last + 1;
  // Closes the job before to threads that still look at it while its count changes.
  next_.store(std::uint64_t{last} << 32 | 0x7fffffffU, std::memory_order_release);
  count_.store(count, std::memory_order_relaxed);
  finished_.store(0, std::memory_order_relaxed);
  task_.store(&task, std::memory_order_relaxed);
  {
    const std::lock_guard lock(mutex_);
    next_.store(std::uint64_t{job} << 32, std::memory_order_release);
  }
  wake_.notify_all();
  TakeTickets(job, 0);
  for (int spins = 0; finished_.load(std::memory_order_acquire) < count; ++spins) {
    if (spins < kSpins)
      Pause();
    else
      std::this_thread::yield();
  }
}

void Workers::Loop(int thread) {
  std::uint32_t seen = 0;
  for (;;) {
    for (int spins = 0; spins < kSpins && JobOf(next_.load(std::memory_order_acquire)) == seen;
         ++spins)
      Pause();
    if (JobOf(next_.load(std::memory_order_acquire)) == seen) {
      std::unique_lock lock(mutex_);
      wake_.wait(lock,
                 [&] { return ends_ || JobOf(next_.load(std::memory_order_relaxed)) != seen; });
      if (ends_) return;
    }
    seen = JobOf(next_.load(std::memory_order_acquire));
    TakeTickets(seen, thread);
  }
}

} // namespace halvenor::raster
