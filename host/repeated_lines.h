// Lines that come over and over again, as from every frame, shown once.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace halvenor {

/// Decides what of a log is shown. A line that comes again while it is among the last ones, and
/// within two seconds, is only counted; when its repetition has ended, one more line says how often
/// it came. One thread at a time.
class RepeatedLines {
public:
  using Clock = std::chrono::steady_clock;

  /// What to show now that `line` has come: lines with the count of what has ended, and `line`
  /// itself when it is new.
  std::vector<std::string> Add(const std::string& line, Clock::time_point now);

  /// The counts of all that has not ended yet; forgets everything.
  std::vector<std::string> End();

private:
  void EndFirst(std::vector<std::string>& shown);

  struct Entry {
    std::string line;
    std::size_t repeats;
    Clock::time_point last;
  };
  std::deque<Entry> entries_; ///< the first one to end comes first
};

} // namespace halvenor
