// Keeps what a plug-in writes to the debug log, so that an error message can say why.
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace halvenor {

/// Takes over the debug log while it lives; one at a time in a process.
class LogCapture {
public:
  enum class Echo { Off, StandardError };

  /// With `echo` every message also becomes a line on standard error: "PROGRAM: message".
  LogCapture(Echo echo, std::string program);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// The messages since the last call, oldest first, UTF-8, joined by "; ". Of one that was
  /// repeated only the first is there, and of very many only the last ones are. Any thread.
  std::string TakeText();

private:
  static void Receive(void* refCon, std::string_view message);

  const Echo echo_;
  const std::string program_;
  std::mutex mutex_;
  std::deque<std::string> lines_;
};

} // namespace halvenor
