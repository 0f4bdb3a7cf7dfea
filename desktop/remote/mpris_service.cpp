#include "desktop/remote/mpris_service.h"

#include "desktop/media_names.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaProperty>
#include <QtCore/QUrl>
#include <QtDBus/QDBusMessage>

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

using namespace mpris;

constexpr double kMicroseconds = 1e6;    // a second
constexpr qint64 kTellMilliseconds = 50; // between two signals

qlonglong Microseconds(double seconds) {
  constexpr double kMostSeconds = 1e12; // more than anything has that plays
  return std::llround(std::clamp(seconds, -kMostSeconds, kMostSeconds) * kMicroseconds);
}

// The present values of the interface's properties, except the position, whose changes are not
// sent.
QVariantMap Properties(const QObject& adaptor) {
  QVariantMap values;
  const QMetaObject* meta = adaptor.metaObject();
  for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
    const QMetaProperty property = meta->property(i);
    const QString name = QString::fromLatin1(property.name());
    if (name != QLatin1String("Position")) values.insert(name, property.read(&adaptor));
  }
  return values;
}

} // namespace

// --- The service --------------------------------------------------------------------------------

MprisService::MprisService(SessionBus& bus, Player& player, MainWindow& window)
    : bus_(bus), root_(new MprisRoot(this, window)),
      player_(new MprisPlayer(this, player, window.Actions())) {
  tell_.setSingleShot(true);
  connect(&tell_, &QTimer::timeout, this, &MprisService::TellChanges);
  const auto tellSoon = [this] {
    if (tell_.isActive()) return;
    const qint64 since = sinceTold_.isValid() ? sinceTold_.elapsed() : kTellMilliseconds;
    tell_.start(static_cast<int>(std::max<qint64>(0, kTellMilliseconds - since)));
  };
  connect(&bus_, &SessionBus::Connected, this, &MprisService::Begin);
  connect(&bus_, &SessionBus::Lost, this, [this] { service_.clear(); });
  connect(&player, &Player::Changed, this, tellSoon);
  connect(&window, &MainWindow::FullScreenChanged, this, tellSoon);
  if (bus_.Connection()) Begin();
}

MprisService::~MprisService() {
  if (service_.isEmpty() || !bus_.Connection()) return;
  QDBusConnection connection = *bus_.Connection();
  connection.unregisterService(service_);
  connection.unregisterObject(kPath);
}

void MprisService::Begin() {
  QDBusConnection connection = *bus_.Connection();
  toldRoot_ = Properties(*root_);
  toldPlayer_ = Properties(*player_);
  connection.registerObject(kPath, this, QDBusConnection::ExportAdaptors);
  const QString first = kPlayerPrefix + QStringLiteral(".halvenor");
  const QString another =
      first + QStringLiteral(".instance%1").arg(QCoreApplication::applicationPid());
  for (const QString& name : {first, another}) {
    if (!connection.registerService(name)) continue;
    service_ = name;
    return;
  }
}

void MprisService::TellChanges() {
  if (service_.isEmpty()) return;
  Tell(kRootInterface, *root_, toldRoot_);
  Tell(kPlayerInterface, *player_, toldPlayer_);
}

void MprisService::Tell(const QString& interface, const QObject& adaptor, QVariantMap& told) {
  QVariantMap now = Properties(adaptor);
  QVariantMap changed;
  for (auto property = now.cbegin(); property != now.cend(); ++property) {
    if (told.value(property.key()) != property.value())
      changed.insert(property.key(), property.value());
  }
  told = std::move(now);
  if (changed.isEmpty() || !bus_.Connection()) return;
  QDBusMessage signal =
      QDBusMessage::createSignal(kPath, kPropertiesInterface, QStringLiteral("PropertiesChanged"));
  signal << interface << changed << QStringList();
  bus_.Connection()->send(signal);
  sinceTold_.start();
}

// --- org.mpris.MediaPlayer2 ---------------------------------------------------------------------

MprisRoot::MprisRoot(QObject* parent, MainWindow& window)
    : QDBusAbstractAdaptor(parent), window_(window) {}

QString MprisRoot::Identity() {
  return QStringLiteral("Halvenor");
}

QString MprisRoot::DesktopEntry() {
  return QStringLiteral("org.halvenor.Halvenor");
}

QStringList MprisRoot::SupportedUriSchemes() {
  return {QStringLiteral("file"), QStringLiteral("http"), QStringLiteral("https")};
}

QStringList MprisRoot::SupportedMimeTypes() {
  return {QStringLiteral("application/ogg"),    QStringLiteral("application/xspf+xml"),
          QStringLiteral("audio/aac"),          QStringLiteral("audio/flac"),
          QStringLiteral("audio/mp4"),          QStringLiteral("audio/mpeg"),
          QStringLiteral("audio/ogg"),          QStringLiteral("audio/opus"),
          QStringLiteral("audio/vorbis"),       QStringLiteral("audio/x-mpegurl"),
          QStringLiteral("audio/x-opus+ogg"),   QStringLiteral("audio/x-scpls"),
          QStringLiteral("audio/x-vorbis+ogg"), QStringLiteral("audio/x-wav")};
}

// --- org.mpris.MediaPlayer2.Player --------------------------------------------------------------

MprisPlayer::MprisPlayer(QObject* parent, Player& player, UserActions& actions)
    : QDBusAbstractAdaptor(parent), player_(player), actions_(actions) {
  connect(&player_, &Player::Seeked, this,
          [this](double seconds) { emit Seeked(Microseconds(seconds)); });
}

QString MprisPlayer::PlaybackStatus() const {
  if (!IsPlaying()) return QStringLiteral("Stopped");
  return player_.IsPaused() ? QStringLiteral("Paused") : kPlaying;
}

void MprisPlayer::SetRate(double rate) {
  if (rate == 0) Pause();
}

QDBusObjectPath MprisPlayer::TrackId() const {
  return QDBusObjectPath(QStringLiteral("/org/halvenor/track/%1").arg(player_.TrackNumber()));
}

QVariantMap MprisPlayer::Metadata() const {
  if (!IsPlaying() || player_.Medium().empty()) return {};
  QVariantMap metadata{{QStringLiteral("mpris:trackid"), QVariant::fromValue(TrackId())},
                       {kTitle, player_.Title()},
                       {QStringLiteral("xesam:url"), ToAddress(player_.Medium())}};
  if (const std::optional<double> length = player_.Length())
    metadata.insert(QStringLiteral("mpris:length"), Microseconds(*length));
  if (!player_.Artist().isEmpty()) metadata.insert(kArtist, QStringList{player_.Artist()});
  if (!player_.Album().isEmpty()) metadata.insert(QStringLiteral("xesam:album"), player_.Album());
  return metadata;
}

void MprisPlayer::SetVolume(double volume) {
  if (!std::isfinite(volume)) return;
  player_.SetVolume(volume);
  if (volume > 0) player_.SetMuted(false);
}

qlonglong MprisPlayer::Position() const {
  return Microseconds(player_.Position());
}

void MprisPlayer::Seek(qlonglong offset) {
  const double wanted = player_.Position() + static_cast<double>(offset) / kMicroseconds;
  const std::optional<double> length = player_.Length();
  if (length && wanted > *length) {
    Next();
  } else {
    player_.Seek(wanted);
  }
}

void MprisPlayer::SetPosition(const QDBusObjectPath& track, qlonglong position) {
  const std::optional<double> length = player_.Length();
  if (!IsPlaying() || track != TrackId() || position < 0) return;
  if (length && position > Microseconds(*length)) return;
  player_.Seek(static_cast<double>(position) / kMicroseconds);
}

void MprisPlayer::OpenUri(const QString& uri) {
  const QUrl url(uri);
  if (!MprisRoot::SupportedUriSchemes().contains(url.scheme())) return;
  player_.Open({url.isLocalFile() ? url.toLocalFile() : uri});
}

} // namespace halvenor
