// What is to be played one after the other.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace halvenor {

struct QueueEntry {
  std::string medium; ///< a path or a URI, its bytes as they are
  std::string title;  ///< for people, UTF-8, never empty
};

/// The entries and the place in them. Plays nothing.
class PlayQueue {
public:
  /// No entry is the current one afterwards.
  void Replace(std::vector<QueueEntry> entries);

  [[nodiscard]] const std::vector<QueueEntry>& Entries() const { return entries_; }
  /// -1: none.
  [[nodiscard]] int Current() const { return current_; }
  /// The entry at `offset` from the current one; null beyond the ends and where there is none.
  [[nodiscard]] const QueueEntry* FromCurrent(int offset) const;
  /// False, and nothing changes, for what is no index.
  bool GoTo(int index);

private:
  std::vector<QueueEntry> entries_;
  int current_ = -1;
};

/// What is said of entries that cannot be played: the first ones each by itself, of many more only
/// how many, and when it is time to give up.
class FailureTally {
public:
  /// A new queue begins.
  void Reset() { *this = {}; }
  /// The current entry can be played. What is to be said of those before it; mostly nothing.
  std::optional<std::string> Played();
  /// It cannot, for the reason in `error`. What is to be said of that.
  std::optional<std::string> Failed(const std::string& error);
  /// Whether so many entries failed in a row that the next ones will, too.
  [[nodiscard]] bool IsHopeless() const;
  /// The queue has come to its end, or was given up. What is to be said, if something failed.
  [[nodiscard]] std::optional<std::string> Ended(std::size_t entries) const;

private:
  [[nodiscard]] std::optional<std::string> Untold() const;

  std::size_t inARow_ = 0;
  bool anyPlayed_ = false;
};

} // namespace halvenor
