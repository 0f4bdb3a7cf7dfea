#include "platform/debug_log.h"

#include "files/printable.h"
#include "platform/carbon.h"

#include <cerrno>
#include <cstdio>
#include <mutex>
#include <string>

namespace halvenor::debug_log {
namespace {

void WriteToStandardError(void* /*refCon*/, std::string_view message) {
  const std::string line =
      std::string(program_invocation_short_name) + ": " + Printable(message) + '\n';
  std::fwrite(line.data(), 1, line.size(), stderr); // in one piece: other threads write there, too
}

struct Log {
  std::mutex mutex;
  Receiver receiver = WriteToStandardError;
  void* refCon = nullptr;
};

// Never destroyed: a thread may still have something to say while the program ends.
Log& TheLog() {
  static Log& log = *new Log;
  return log;
}

} // namespace

void SetReceiver(Receiver receiver, void* refCon) {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  log.receiver = receiver != nullptr ? receiver : WriteToStandardError;
  log.refCon = refCon;
}

} // namespace halvenor::debug_log

void DebugStr(ConstStr255Param message) {
  using namespace halvenor::debug_log;
  Log& log = TheLog();
  // Held during the call, so that `SetReceiver` returns only when the former receiver is done.
  const std::lock_guard lock(log.mutex);
  log.receiver(log.refCon, {reinterpret_cast<const char*>(message) + 1, message[0]});
}
