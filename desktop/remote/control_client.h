// `halvenor --control`: sends a command to the running program.
#pragma once

#include <QtCore/QStringList>

namespace halvenor {

/// Sends the command and waits for the answer. Returns the exit status, after one line on standard
/// error if that is not 0: 1, no program is running or it refused; 2, the command is wrong.
int SendControl(QStringList words);

} // namespace halvenor
