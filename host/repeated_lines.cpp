#include "host/repeated_lines.h"

#include <algorithm>

namespace halvenor {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 2s;
constexpr std::size_t kMostEntries = 8;

} // namespace

void RepeatedLines::EndFirst(std::vector<std::string>& shown) {
  const Entry& first = entries_.front();
  if (first.repeats > 0)
    shown.push_back(first.line + " (" + std::to_string(first.repeats) +
                    (first.repeats == 1 ? " more time)" : " more times)"));
  entries_.pop_front();
}

std::vector<std::string> RepeatedLines::Add(const std::string& line, Clock::time_point now) {
  std::vector<std::string> shown;
  while (!entries_.empty() && now - entries_.front().last > kPatience)
    EndFirst(shown);
  const auto known =
      std::ranges::find_if(entries_, [&](const Entry& entry) { return entry.line == line; });
  Entry entry{line, 0, now};
  if (known != entries_.end()) {
    entry.repeats = known->repeats + 1;
    entries_.erase(known);
  } else {
    if (entries_.size() == kMostEntries) EndFirst(shown);
    shown.push_back(line);
  }
  entries_.push_back(std::move(entry));
  return shown;
}

std::vector<std::string> RepeatedLines::End() {
  std::vector<std::string> shown;
  while (!entries_.empty())
    EndFirst(shown);
  return shown;
}

} // namespace halvenor
