#include "host/log_capture.h"

#include "files/printable.h"
#include "platform/debug_log.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace halvenor {
namespace {

constexpr std::size_t kMaxLines = 16;

// Lines that say that all is well begin so.
constexpr std::string_view kGoodNews[] = {
    "Halvenor : ARB shader support found!",
    "Halvenor settings updated from old version",
    "Rendering locked, waiting for it to finish",
    "Halvenor platform: OpenGL is drawn on the processor",
};

bool IsShown(LogCapture::Echo echo, const std::string& line) {
  if (echo != LogCapture::Echo::Errors) return echo == LogCapture::Echo::Everything;
  return std::ranges::none_of(kGoodNews,
                              [&](std::string_view begin) { return line.starts_with(begin); });
}

} // namespace

LogCapture::LogCapture(Echo echo, std::string program) : program_(std::move(program)), echo_(echo) {
  debug_log::SetReceiver(&Receive, this);
}

LogCapture::~LogCapture() {
  debug_log::SetReceiver(nullptr, nullptr);
  for (const std::string& line : repeated_.End())
    Print(line);
}

void LogCapture::Print(const std::string& line) const {
  std::fprintf(stderr, "%s: %s\n", program_.c_str(), line.c_str());
}

void LogCapture::Show(const std::string& line) {
  if (!IsShown(echo_, line)) return;
  for (const std::string& shown : repeated_.Add(line, RepeatedLines::Clock::now()))
    Print(shown);
}

void LogCapture::StartEcho(Echo echo) {
  const std::scoped_lock lock(mutex_);
  const bool isFirst = std::exchange(echo_, echo) == Echo::Nothing;
  if (isFirst) std::ranges::for_each(lines_, [this](const std::string& line) { Show(line); });
}

std::string LogCapture::TakeText() {
  const std::scoped_lock lock(mutex_);
  std::string text;
  for (const std::string& line : lines_) {
    if (!IsShown(Echo::Errors, line)) continue;
    if (!text.empty()) text += "; ";
    text += line;
  }
  lines_.clear();
  return text;
}

void LogCapture::Receive(void* refCon, std::string_view message) {
  auto* const self = static_cast<LogCapture*>(refCon);
  std::string line = Printable(message);
  const std::scoped_lock lock(self->mutex_);
  self->Show(line);
  if (std::ranges::find(self->lines_, line) != self->lines_.end()) return;
  self->lines_.push_back(std::move(line));
  if (self->lines_.size() > kMaxLines) self->lines_.pop_front();
}

} // namespace halvenor
