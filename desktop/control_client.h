// `halvenor --control`: tells the running program what to do.
#pragma once

#include <QtCore/QStringList>

namespace halvenor {

/// Sends the command and waits for the answer; the process's exit status. Says on standard error
/// what went wrong: 1, no program runs or it could not do that; 2, there is no such command.
int SendControl(QStringList words);

} // namespace halvenor
