#include "render/progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unistd.h>

namespace halvenor::render {
namespace {

using namespace std::chrono_literals;

constexpr int kBarWidth = 40;

std::string MinutesAndSeconds(double seconds) {
  const auto whole = static_cast<long>(std::ceil(seconds));
  char text[32];
  std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
  return text;
}

} // namespace

Progress::Progress(ProgressKind kind, std::optional<double> length) : length_(length) {
  if (kind == ProgressKind::Quiet) return;
  if (isatty(STDERR_FILENO))
    style_ = Style::Bar;
  else if (kind == ProgressKind::Always)
    style_ = Style::Lines;
}

Progress::~Progress() {
  if (style_ == Style::Bar && drawn_) std::fputc('\n', stderr);
}

std::string Progress::Line(double seconds, Clock::duration elapsed) const {
  if (!length_ || *length_ <= 0) return MinutesAndSeconds(seconds) + " done";
  const double done = std::clamp(seconds / *length_, 0.0, 1.0);
  const double spent = std::chrono::duration<double>(elapsed).count();
  char percent[16];
  std::snprintf(percent, sizeof percent, "%3d%%", static_cast<int>(done * 100));
  std::string line = percent;
  if (style_ == Style::Bar) {
    const int filled = static_cast<int>(done * kBarWidth);
    line += "  [" + std::string(static_cast<std::size_t>(filled), '#') +
            std::string(static_cast<std::size_t>(kBarWidth - filled), ' ') + "]";
  }
  if (done > 0) line += "  " + MinutesAndSeconds(spent / done - spent) + " left";
  return line;
}

void Progress::Update(double seconds) {
  if (style_ == Style::None) return;
  const Clock::time_point now = Clock::now();
  const bool whole = length_ && seconds >= *length_;
  if (now < next_ && !whole) return;
  next_ = now + (style_ == Style::Bar ? Clock::duration(100ms) : Clock::duration(2s));
  const std::string line = Line(seconds, now - start_);
  // Return to the start of the line, and clear the rest of a longer one.
  std::fprintf(stderr, style_ == Style::Bar ? "\r%s\x1b[K" : "%s\n", line.c_str());
  drawn_ = true;
}

} // namespace halvenor::render
