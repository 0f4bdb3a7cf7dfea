// Messages on standard error, one line each.
#pragma once

#include <QtCore/QString>

namespace halvenor {

inline constexpr char kProgramName[] = "halvenor";

/// Prints "halvenor: LINE".
void PrintError(const QString& line);

/// Holds back Qt's own messages while it lives, and prints them at its end. If Qt cannot open the
/// display, one line says so and the process ends.
class StartingMessages {
public:
  StartingMessages();
  ~StartingMessages();
  StartingMessages(const StartingMessages&) = delete;
  StartingMessages& operator=(const StartingMessages&) = delete;
};

} // namespace halvenor
