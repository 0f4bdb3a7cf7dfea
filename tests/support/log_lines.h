// Collects what the code under test writes to the debug log.
#pragma once

#include "platform/debug_log.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace halvenor {

class LogLines {
public:
  LogLines() {
    debug_log::SetReceiver(
        [](void* self, std::string_view line) { static_cast<LogLines*>(self)->Add(line); }, this);
  }
  ~LogLines() { debug_log::SetReceiver(nullptr, nullptr); }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  /// The lines since the last call, without the news that every opening brings.
  std::vector<std::string> Take() {
    const std::lock_guard lock(mutex_);
    std::erase(lines_, " Halvenor : ARB shader support found!");
    return std::exchange(lines_, {});
  }

private:
  void Add(std::string_view line) {
    const std::lock_guard lock(mutex_);
    lines_.emplace_back(line);
  }

  std::mutex mutex_;
  std::vector<std::string> lines_;
};

} // namespace halvenor
