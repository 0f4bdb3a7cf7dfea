#include "platform/debug_log.h"

#include "platform/carbon.h"

#include <cerrno>
#include <cstdio>
#include <mutex>
#include <string>

namespace halvenor::debug_log {
namespace {

void WriteToStandardError(void* /*refCon*/, std::string_view message) {
  std::string line = program_invocation_short_name;
  line += ": ";
  // A title can bring any byte along; none of them may break the line or steer a terminal.
  for (const char character : message) {
    const bool printable = character >= ' ' && character <= '~';
    line += printable ? character : '?';
  }
  line += '\n';
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
