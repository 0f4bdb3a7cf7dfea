// This program as a player on D-Bus (MPRIS 2): for media keys, panels and `playerctl`.
#pragma once

#include "desktop/playback/player.h"
#include "desktop/remote/session_bus.h"
#include "desktop/window/main_window.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusAbstractAdaptor>
#include <QtDBus/QDBusObjectPath>

namespace halvenor {

/// The names of MPRIS 2 that both sides need.
namespace mpris {
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
} // namespace mpris

/// Offers the player as org.mpris.MediaPlayer2.halvenor, a second running program as
/// ...halvenor.instancePID, for as long as there is a bus. Changes are sent 20 times a second at
/// most, however fast other programs cause them.
///
/// While the player listens, its status is "Stopped", so that media keys go to other players.
class MprisService final : public QObject {
  Q_OBJECT

public:
  /// All must outlive this object.
  MprisService(SessionBus& bus, Player& player, MainWindow& window);
  ~MprisService() override;

private:
  void Begin();
  void TellChanges();
  void Tell(const QString& interface, const QObject& adaptor, QVariantMap& told);

  SessionBus& bus_;
  QDBusAbstractAdaptor* root_;
  QDBusAbstractAdaptor* player_;
  QVariantMap toldRoot_;
  QVariantMap toldPlayer_;
  QString service_;
  QTimer tell_; ///< runs while changes wait to be told
  QElapsedTimer sinceTold_;
};

/// The interface org.mpris.MediaPlayer2.
class MprisRoot final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
  Q_PROPERTY(bool CanQuit READ Yes)
  Q_PROPERTY(bool CanRaise READ Yes)
  Q_PROPERTY(bool CanSetFullscreen READ Yes)
  Q_PROPERTY(bool Fullscreen READ IsFullscreen WRITE SetFullscreen)
  Q_PROPERTY(bool HasTrackList READ No)
  Q_PROPERTY(QString Identity READ Identity)
  Q_PROPERTY(QString DesktopEntry READ DesktopEntry)
  Q_PROPERTY(QStringList SupportedUriSchemes READ SupportedUriSchemes)
  Q_PROPERTY(QStringList SupportedMimeTypes READ SupportedMimeTypes)

public:
  MprisRoot(QObject* parent, MainWindow& window);

  static bool Yes() { return true; }
  static bool No() { return false; }
  [[nodiscard]] bool IsFullscreen() const { return window_.isFullScreen(); }
  void SetFullscreen(bool fullscreen) { window_.SetFullScreen(fullscreen); }
  [[nodiscard]] static QString Identity();
  [[nodiscard]] static QString DesktopEntry();
  [[nodiscard]] static QStringList SupportedUriSchemes();
  [[nodiscard]] static QStringList SupportedMimeTypes();

public slots:
  void Raise() { window_.Actions().Run(UserAction::Raise); }
  void Quit() { window_.Actions().Run(UserAction::Quit); }

private:
  MainWindow& window_;
};

/// The interface org.mpris.MediaPlayer2.Player. Times are in microseconds.
class MprisPlayer final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
  Q_PROPERTY(QString PlaybackStatus READ PlaybackStatus)
  Q_PROPERTY(double Rate READ Rate WRITE SetRate)
  Q_PROPERTY(double MinimumRate READ Rate)
  Q_PROPERTY(double MaximumRate READ Rate)
  Q_PROPERTY(QVariantMap Metadata READ Metadata)
  Q_PROPERTY(double Volume READ Volume WRITE SetVolume)
  Q_PROPERTY(qlonglong Position READ Position)
  Q_PROPERTY(bool CanGoNext READ CanGoNext)
  Q_PROPERTY(bool CanGoPrevious READ CanGoPrevious)
  Q_PROPERTY(bool CanPlay READ CanPlay)
  Q_PROPERTY(bool CanPause READ CanPause)
  Q_PROPERTY(bool CanSeek READ CanSeek)
  Q_PROPERTY(bool CanControl READ CanControl)

public:
  MprisPlayer(QObject* parent, Player& player, UserActions& actions);

  [[nodiscard]] QString PlaybackStatus() const;
  [[nodiscard]] static double Rate() { return 1; }
  /// 0 means pause; other rates are not supported and ignored.
  void SetRate(double rate);
  [[nodiscard]] QVariantMap Metadata() const;
  [[nodiscard]] double Volume() const { return player_.IsMuted() ? 0 : player_.Volume(); }
  /// Ignores what is not finite.
  void SetVolume(double volume);
  [[nodiscard]] qlonglong Position() const;
  [[nodiscard]] bool CanGoNext() const { return Can(UserAction::Next); }
  [[nodiscard]] bool CanGoPrevious() const { return Can(UserAction::Previous); }
  [[nodiscard]] bool CanPlay() const { return Can(UserAction::Play); }
  [[nodiscard]] bool CanPause() const { return Can(UserAction::Pause); }
  [[nodiscard]] bool CanSeek() const { return Can(UserAction::Seek); }
  [[nodiscard]] static bool CanControl() { return true; }

public slots:
  void Next() { actions_.Run(UserAction::Next); }
  void Previous() { actions_.Run(UserAction::Previous); }
  void Play() { actions_.Run(UserAction::Play); }
  void Pause() { actions_.Run(UserAction::Pause); }
  void PlayPause() { actions_.Run(UserAction::PlayPause); }
  void Stop() { actions_.Run(UserAction::Stop); }
  /// Beyond the end it plays the next entry.
  void Seek(qlonglong offset);
  /// Ignored for any other than the present track, and beyond its ends.
  void SetPosition(const QDBusObjectPath& track, qlonglong position);
  void OpenUri(const QString& uri);

signals:
  void Seeked(qlonglong position);

private:
  [[nodiscard]] bool IsPlaying() const { return player_.CurrentMode() == Player::Mode::Playing; }
  [[nodiscard]] bool Can(UserAction action) const { return actions_.Refusal(action).isEmpty(); }
  [[nodiscard]] QDBusObjectPath TrackId() const;

  Player& player_;
  UserActions& actions_;
};

} // namespace halvenor
