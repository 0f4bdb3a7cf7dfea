// The media that are played one after the other.
#pragma once

#include <string>
#include <vector>

namespace halvenor {

struct QueueEntry {
  std::string medium; ///< a path or a URI, its bytes unchanged
  std::string title;  ///< for people, UTF-8, never empty
};

/// The entries and the current position. Plays nothing itself.
class MediaQueue {
public:
  /// There is no current entry afterwards.
  void Replace(std::vector<QueueEntry> entries);

  [[nodiscard]] const std::vector<QueueEntry>& Entries() const { return entries_; }
  /// -1: none.
  [[nodiscard]] int Current() const { return current_; }
  /// The entry at `offset` from the current one; null beyond the ends and without a current entry.
  [[nodiscard]] const QueueEntry* FromCurrent(int offset) const;
  /// Returns false and changes nothing when `index` is out of range.
  bool GoTo(int index);

private:
  std::vector<QueueEntry> entries_;
  int current_ = -1;
};

} // namespace halvenor
