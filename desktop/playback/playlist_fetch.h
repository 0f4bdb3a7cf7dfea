// Playlists from the network.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>
#include <stop_token>

namespace halvenor {

/// Downloads the playlist at `address`, following redirections. Blocks for at most ten seconds, or
/// until `stop` is requested, in an event loop of its own: call it on a thread that has none. On
/// failure, also when there is more than 1 MiB, returns nothing and leaves one line in `problem`.
///
/// Audio in place of a list is no failure: the result is empty then, and comes at once.
std::optional<QByteArray> FetchPlaylist(const QString& address, const std::stop_token& stop,
                                        QString& problem);

} // namespace halvenor
