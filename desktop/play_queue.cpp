#include "desktop/play_queue.h"

#include <utility>

namespace halvenor {
namespace {

constexpr std::size_t kToldOneByOne = 3;
constexpr std::size_t kHopeless = 50;

} // namespace

void PlayQueue::Replace(std::vector<QueueEntry> entries) {
  entries_ = std::move(entries);
  current_ = -1;
}

const QueueEntry* PlayQueue::FromCurrent(int offset) const {
  const auto index = static_cast<std::ptrdiff_t>(current_) + offset;
  if (current_ < 0 || index < 0 || index >= std::ssize(entries_)) return nullptr;
  return &entries_[static_cast<std::size_t>(index)];
}

bool PlayQueue::GoTo(int index) {
  if (index < 0 || index >= std::ssize(entries_)) return false;
  current_ = index;
  return true;
}

std::optional<std::string> FailureTally::Untold() const {
  if (inARow_ <= kToldOneByOne) return std::nullopt;
  return std::to_string(inARow_ - kToldOneByOne) + " more could not be played";
}

std::optional<std::string> FailureTally::Played() {
  std::optional<std::string> untold = Untold();
  inARow_ = 0;
  anyPlayed_ = true;
  return untold;
}

std::optional<std::string> FailureTally::Failed(const std::string& error) {
  ++inARow_;
  if (inARow_ > kToldOneByOne) return std::nullopt;
  return error;
}

bool FailureTally::IsHopeless() const {
  return inARow_ >= kHopeless;
}

std::optional<std::string> FailureTally::Ended(std::size_t entries) const {
  if (IsHopeless())
    return std::to_string(inARow_) + " entries in a row could not be played: stopped";
  if (!anyPlayed_ && inARow_ > 1 && inARow_ == entries)
    return "none of the " + std::to_string(entries) + " entries could be played";
  return Untold();
}

} // namespace halvenor
