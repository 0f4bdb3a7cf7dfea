// What the program says on standard error: one line a message.
#pragma once

#include <QtCore/QString>

namespace halvenor {

inline constexpr char kProgramName[] = "halvenor";

/// Prints "halvenor: LINE".
void PrintError(const QString& line);

/// While it lives, Qt's own messages are held back: a program that cannot open its display says
/// so in one line, and ends. What else was said is printed at the end of its life.
class StartingMessages {
public:
  StartingMessages();
  ~StartingMessages();
  StartingMessages(const StartingMessages&) = delete;
  StartingMessages& operator=(const StartingMessages&) = delete;
};

} // namespace halvenor
