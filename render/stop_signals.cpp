#include "render/stop_signals.h"

#include <atomic>
#include <signal.h>

namespace halvenor::render {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> arrived{0};
static_assert(std::atomic<int>::is_always_lock_free);

void Note(int signal) {
  int none = 0;
  arrived.compare_exchange_strong(none, signal);
}

sigset_t Set() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kSignals)
    sigaddset(&set, signal);
  return set;
}

} // namespace

StopSignals::StopSignals() {
  const sigset_t set = Set();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  // Without SA_RESTART: a wait that they meet is to end.
  struct sigaction action {};
  action.sa_handler = &Note;
  for (const int signal : kSignals)
    sigaction(signal, &action, nullptr);
  action.sa_handler = SIG_IGN;
  for (const int signal : {SIGPIPE, SIGXFSZ})
    sigaction(signal, &action, nullptr);
}

int StopSignals::Arrived() {
  // They are blocked nearly everywhere, so look at what waits for delivery.
  const sigset_t set = Set();
  constexpr timespec kNoWait{};
  if (const int signal = sigtimedwait(&set, nullptr, &kNoWait); signal > 0) Note(signal);
  return arrived.load();
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
