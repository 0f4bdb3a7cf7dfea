#include "host/log_capture.h"

#include "host/text.h"
#include "platform/debug_log.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace halvenor {
namespace {

constexpr std::size_t kMaxLines = 16;

} // namespace

LogCapture::LogCapture(Echo echo, std::string program) : echo_(echo), program_(std::move(program)) {
  debug_log::SetReceiver(&Receive, this);
}

LogCapture::~LogCapture() {
  debug_log::SetReceiver(nullptr, nullptr);
}

std::string LogCapture::TakeText() {
  const std::scoped_lock lock(mutex_);
  std::string text;
  for (const std::string& line : lines_) {
    if (!text.empty()) text += "; ";
    text += line;
  }
  lines_.clear();
  return text;
}

void LogCapture::Receive(void* refCon, std::string_view message) {
  auto* const self = static_cast<LogCapture*>(refCon);
  // Many messages begin with a blank, which would look odd in the middle of a sentence.
  message.remove_prefix(std::min(message.find_first_not_of(' '), message.size()));
  std::string line = FromMacRoman(message);
  const std::scoped_lock lock(self->mutex_);
  if (self->echo_ == Echo::StandardError)
    std::fprintf(stderr, "%s: %s\n", self->program_.c_str(), line.c_str());
  if (!self->lines_.empty() && self->lines_.back() == line) return;
  self->lines_.push_back(std::move(line));
  if (self->lines_.size() > kMaxLines) self->lines_.pop_front();
}

} // namespace halvenor
