// Small files from the network.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>
#include <stop_token>

namespace halvenor {

/// Fetches what lies at `address`, following it where it has moved to. Waits, at most ten seconds
/// and until `stop` is requested, with an event loop of its own: for threads that have none. On
/// failure, also where more than 1 MiB comes, returns nothing and leaves one line in `problem`.
///
/// Sound in place of text is no failure: then an empty array comes back at once.
std::optional<QByteArray> FetchList(const QString& address, const std::stop_token& stop,
                                    QString& problem);

} // namespace halvenor
