#include "render/stop_signals.h"

#include "files/temporary_file.h"

#include <atomic>
#include <cerrno>
#include <semaphore.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

namespace halvenor::render {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr long kPatience = 800'000'000; // nanoseconds

std::atomic<int> arrived{0};
static_assert(std::atomic<int>::is_always_lock_free);
std::atomic<bool> ended{false};
sem_t happened; // a signal, or the end

void Note(int signal) {
  int none = 0;
  if (arrived.compare_exchange_strong(none, signal)) sem_post(&happened);
}

sigset_t Set() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kSignals)
    sigaddset(&set, signal);
  return set;
}

timespec Deadline() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  time.tv_nsec += kPatience;
  time.tv_sec += time.tv_nsec / 1'000'000'000;
  time.tv_nsec %= 1'000'000'000;
  return time;
}

} // namespace

StopSignals::StopSignals() {
  const sigset_t set = Set();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  sem_init(&happened, 0, 0);
  // Without SA_RESTART: a wait that they meet is to end.
  struct sigaction action {};
  action.sa_handler = &Note;
  for (const int signal : kSignals)
    sigaction(signal, &action, nullptr);
  action.sa_handler = SIG_IGN;
  for (const int signal : {SIGPIPE, SIGXFSZ})
    sigaction(signal, &action, nullptr);
  watcher_ = std::thread(&StopSignals::Watch);
}

StopSignals::~StopSignals() {
  ended = true;
  sem_post(&happened);
  watcher_.join();
}

// Here the signals arrive, unless the main thread is interruptible.
void StopSignals::Watch() {
  const sigset_t set = Set();
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
  while (arrived == 0 && !ended)
    sem_wait(&happened);
  const timespec deadline = Deadline();
  int waiting = 0;
  while (!ended && waiting == 0)
    waiting =
        sem_clockwait(&happened, CLOCK_MONOTONIC, &deadline) == 0 || errno == EINTR ? 0 : errno;
  if (ended) return;
  TemporaryFile::RemoveAll();
  _exit(kStatusBase + arrived);
}

int StopSignals::Arrived() {
  return arrived;
}

StopSignals::Interruptible::Interruptible() {
  const sigset_t set = Set();
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

StopSignals::Interruptible::~Interruptible() {
  const sigset_t set = Set();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

} // namespace halvenor::render
