// The words of MPRIS 2 that are said and understood here.
#pragma once

#include <QtCore/QString>

namespace halvenor::mpris {

inline const QString kPlayerPrefix = QStringLiteral("org.mpris.MediaPlayer2");
inline const QString kPath = QStringLiteral("/org/mpris/MediaPlayer2");
inline const QString kRootInterface = QStringLiteral("org.mpris.MediaPlayer2");
inline const QString kPlayerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");
inline const QString kPropertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

inline const QString kIdentity = QStringLiteral("Identity");
inline const QString kPlaybackStatus = QStringLiteral("PlaybackStatus");
inline const QString kPlaying = QStringLiteral("Playing");
inline const QString kMetadata = QStringLiteral("Metadata");
inline const QString kTitle = QStringLiteral("xesam:title");
inline const QString kArtist = QStringLiteral("xesam:artist");

} // namespace halvenor::mpris
