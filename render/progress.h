// How far a run is, on standard error.
#pragma once

#include "render/options.h"

#include <chrono>
#include <optional>
#include <string>

namespace halvenor::render {

/// A bar that is drawn over on a terminal, now and then a line elsewhere. One thread.
class Progress {
public:
  /// `length`: seconds that will be shown, if that is known.
  Progress(ProgressKind kind, std::optional<double> length);
  /// Leaves the cursor on a line of its own.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `seconds` of the show are done.
  void Update(double seconds);

private:
  using Clock = std::chrono::steady_clock;
  [[nodiscard]] std::string Line(double seconds, Clock::duration elapsed) const;

  enum class Style { None, Bar, Lines } style_ = Style::None;
  const std::optional<double> length_;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;
  bool drawn_ = false;
};

} // namespace halvenor::render
