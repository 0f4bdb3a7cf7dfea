#include "desktop/quit_signals.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace halvenor {
namespace {

// Open for the life of the process: a signal may come at any time.
int signalPipe[2] = {-1, -1};

void OnSignal(int) {
  const int savedErrno = errno;
  const char byte = 0;
  [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
  errno = savedErrno;
}

} // namespace

QuitSignals::QuitSignals() {
  if (signalPipe[0] < 0 && pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
  connect(notifier_.get(), &QSocketNotifier::activated, this, [this] {
    char byte;
    while (read(signalPipe[0], &byte, 1) > 0) {
    }
    emit Received();
  });
  struct sigaction action {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP})
    sigaction(signal, &action, nullptr);
}

} // namespace halvenor
