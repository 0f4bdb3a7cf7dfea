// The commands of `halvenor --control`: the user actions that have a word, as text.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace halvenor {

class UserActions;

/// The commands, one line each, for people.
QString ControlHelp();

/// What is wrong with a command and its arguments, each of which is checked here; empty: nothing.
QString ControlFault(const QStringList& words);

/// Runs a command without fault. Why it was not carried out; empty: it was.
QString RunControl(const QStringList& words, UserActions& actions);

/// A command as one line for the socket. Reading returns none for anything else.
QByteArray WriteRequest(const QStringList& words);
std::optional<QStringList> ReadRequest(const QByteArray& line);

} // namespace halvenor
