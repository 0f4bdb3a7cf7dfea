// This program as a player on D-Bus (MPRIS 2): for media keys, panels and `playerctl`.
#pragma once

#include "desktop/player.h"
#include "desktop/remote_window.h"
#include "desktop/session_bus.h"

#include <QtCore/QObject>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusAbstractAdaptor>
#include <QtDBus/QDBusObjectPath>

namespace halvenor {

/// Offers the player as org.mpris.MediaPlayer2.halvenor, a second program of its kind as
/// ...halvenor.instancePID, for as long as there is a bus.
///
/// While it listens to others it says that it is stopped: media keys are theirs then.
class MprisService final : public QObject {
  Q_OBJECT

public:
  /// All must outlive this object.
  MprisService(SessionBus& bus, Player& player, RemoteWindow& window);
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
  MprisRoot(QObject* parent, RemoteWindow& window);

  static bool Yes() { return true; }
  static bool No() { return false; }
  [[nodiscard]] bool IsFullscreen() const { return window_.IsFullScreen(); }
  void SetFullscreen(bool fullscreen) { window_.SetFullScreen(fullscreen); }
  [[nodiscard]] static QString Identity();
  [[nodiscard]] static QString DesktopEntry();
  [[nodiscard]] static QStringList SupportedUriSchemes();
  [[nodiscard]] static QStringList SupportedMimeTypes();

public slots:
  void Raise() { window_.Raise(); }
  void Quit() { window_.Quit(); }

private:
  RemoteWindow& window_;
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
  MprisPlayer(QObject* parent, Player& player);

  [[nodiscard]] QString PlaybackStatus() const;
  [[nodiscard]] static double Rate() { return 1; }
  /// 0 asks for a pause; any other rate is not to be had.
  void SetRate(double rate);
  [[nodiscard]] QVariantMap Metadata() const;
  [[nodiscard]] double Volume() const { return player_.IsMuted() ? 0 : player_.Volume(); }
  void SetVolume(double volume);
  [[nodiscard]] qlonglong Position() const;
  [[nodiscard]] bool CanGoNext() const { return player_.CanGoNext(); }
  [[nodiscard]] bool CanGoPrevious() const { return player_.CanGoPrevious(); }
  [[nodiscard]] bool CanPlay() const { return player_.CanPlay(); }
  [[nodiscard]] bool CanPause() const { return IsPlaying(); }
  [[nodiscard]] bool CanSeek() const { return player_.CanSeek(); }
  [[nodiscard]] static bool CanControl() { return true; }

public slots:
  void Next() { player_.Next(); }
  void Previous() { player_.Previous(); }
  void Play() { player_.Play(); }
  void Pause() { player_.Pause(); }
  void PlayPause() { player_.PlayPause(); }
  void Stop() { player_.Stop(); }
  /// Beyond the end it means the next entry.
  void Seek(qlonglong offset);
  /// Ignored for another track than the present one, and beyond its ends.
  void SetPosition(const QDBusObjectPath& track, qlonglong position);
  void OpenUri(const QString& uri);

signals:
  void Seeked(qlonglong position);

private:
  [[nodiscard]] bool IsPlaying() const { return player_.CurrentMode() == Player::Mode::Playing; }
  [[nodiscard]] QDBusObjectPath TrackId() const;

  Player& player_;
};

} // namespace halvenor
