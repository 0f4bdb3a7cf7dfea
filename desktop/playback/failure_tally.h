// How much is reported when entries of the queue fail.
#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#include <cstddef>
#include <optional>

namespace halvenor {

/// Reports the first three failures in a row one by one and only counts the rest; decides when to
/// give up.
class FailureTally {
  Q_DECLARE_TR_FUNCTIONS(halvenor::FailureTally)

public:
  using Report = std::optional<QString>; ///< one line for a person; none: say nothing

  /// A new queue begins.
  void Reset() { *this = {}; }
  /// The current entry plays. Reports what was only counted before it.
  Report Played();
  /// The current entry cannot be played, for the reason in `error`.
  Report Failed(const QString& error);
  /// Whether so many entries failed in a row that the next ones will fail, too.
  [[nodiscard]] bool IsHopeless() const;
  /// The queue of `entries` entries has ended or was given up.
  [[nodiscard]] Report Ended(std::size_t entries) const;

private:
  [[nodiscard]] Report Counted() const;

  std::size_t inARow_ = 0;
  bool anyPlayed_ = false;
};

} // namespace halvenor
