// What a plug-in writes to the debug log, kept for error messages and shown on standard error.
#pragma once

#include "host/repeated_lines.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace halvenor {

/// Takes over the debug log while it lives; one at a time in a process.
class LogCapture {
public:
  /// What appears on standard error, as "PROGRAM: message": errors alone leave out the messages by
  /// which the plug-in says that all is well.
  enum class Echo { Nothing, Errors, Everything };

  LogCapture(Echo echo, std::string program);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// From now on shows what `echo` says; after `Echo::Nothing` also what has been kept. Any thread.
  void StartEcho(Echo echo);

  /// The errors since the last call, oldest first, joined by "; ", fit to be shown. Of one that was
  /// repeated only the first is there, and of very many only the last ones are. Any thread.
  std::string TakeText();

private:
  static void Receive(void* refCon, std::string_view message);
  void Show(const std::string& line);
  void Print(const std::string& line) const;

  const std::string program_;
  std::mutex mutex_;
  Echo echo_;
  std::deque<std::string> lines_;
  RepeatedLines repeated_;
};

} // namespace halvenor
