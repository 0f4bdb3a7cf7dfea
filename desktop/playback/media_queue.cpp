#include "desktop/playback/media_queue.h"

#include <cstddef>
#include <utility>

namespace halvenor {

void MediaQueue::Replace(std::vector<QueueEntry> entries) {
  entries_ = std::move(entries);
  current_ = -1;
}

const QueueEntry* MediaQueue::FromCurrent(int offset) const {
  const auto index = static_cast<std::ptrdiff_t>(current_) + offset;
  if (current_ < 0 || index < 0 || index >= std::ssize(entries_)) return nullptr;
  return &entries_[static_cast<std::size_t>(index)];
}

bool MediaQueue::GoTo(int index) {
  if (index < 0 || index >= std::ssize(entries_)) return false;
  current_ = index;
  return true;
}

} // namespace halvenor
