// The commands of `halvenor --control`: their words, and what they do.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace halvenor {

class Player;
class RemoteWindow;

/// The commands, one line each, for people.
QString ControlHelp();

/// What is wrong with a command and its arguments; empty: nothing.
QString ControlFault(const QStringList& words);

/// Carries out what has no fault. Why it could not be done; empty: it was.
QString RunControl(const QStringList& words, Player& player, RemoteWindow& window);

/// A number, or a step from what is now when it has a sign.
struct Amount {
  double value = 0;
  bool isStep = false;
  [[nodiscard]] double From(double now) const { return isStep ? now + value : value; }
  friend bool operator==(const Amount&, const Amount&) = default;
};
std::optional<Amount> ReadAmount(const QString& text);

/// A command as it goes over the socket: one line. Reading gives none for what is no such line.
QByteArray WriteRequest(const QStringList& words);
std::optional<QStringList> ReadRequest(const QByteArray& line);

} // namespace halvenor
