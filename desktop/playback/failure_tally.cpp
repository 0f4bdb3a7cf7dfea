#include "desktop/playback/failure_tally.h"

namespace halvenor {
namespace {

constexpr std::size_t kReportedOneByOne = 3;
constexpr std::size_t kHopeless = 50;

} // namespace

FailureTally::Report FailureTally::Counted() const {
  if (inARow_ <= kReportedOneByOne) return std::nullopt;
  return tr("%n more could not be played", nullptr, static_cast<int>(inARow_ - kReportedOneByOne));
}

FailureTally::Report FailureTally::Played() {
  Report counted = Counted();
  inARow_ = 0;
  anyPlayed_ = true;
  return counted;
}

FailureTally::Report FailureTally::Failed(const QString& error) {
  ++inARow_;
  if (inARow_ > kReportedOneByOne) return std::nullopt;
  return error;
}

bool FailureTally::IsHopeless() const {
  return inARow_ >= kHopeless;
}

FailureTally::Report FailureTally::Ended(std::size_t entries) const {
  if (IsHopeless()) {
    return tr("Stopped: %n entries in a row could not be played", nullptr,
              static_cast<int>(inARow_));
  }
  if (!anyPlayed_ && inARow_ > 1 && inARow_ == entries)
    return tr("None of the %n entries could be played", nullptr, static_cast<int>(entries));
  return Counted();
}

} // namespace halvenor
