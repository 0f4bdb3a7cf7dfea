#include "desktop/mpris_titles.h"

#include "desktop/mpris_names.h"
#include "desktop/shown_text.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>

#include <algorithm>

namespace halvenor {
namespace {

using namespace mpris;

// It stands for whichever player is the active one, and would only say everything twice.
const QString kProxy = QStringLiteral("org.mpris.MediaPlayer2.playerctld");
const QString kBus = QStringLiteral("org.freedesktop.DBus");
constexpr std::size_t kMostOthers = 64;

// A dictionary of the bus, or an empty one for what is something else.
QVariantMap Dictionary(const QVariant& value) {
  if (value.metaType() == QMetaType::fromType<QVariantMap>()) return value.toMap();
  if (value.metaType() != QMetaType::fromType<QDBusArgument>()) return {};
  const auto argument = value.value<QDBusArgument>();
  if (argument.currentSignature() != QStringLiteral("a{sv}")) return {};
  return qdbus_cast<QVariantMap>(argument);
}

} // namespace

MprisTitles::MprisTitles(SessionBus& bus) : bus_(bus) {
  connect(&bus_, &SessionBus::Connected, this, &MprisTitles::Begin);
  connect(&bus_, &SessionBus::Lost, this, &MprisTitles::Clear);
  if (bus_.Connection()) Begin();
}

void MprisTitles::Begin() {
  QDBusConnection connection = *bus_.Connection();
  watcher_ =
      std::make_unique<QDBusServiceWatcher>(QString(kPlayerPrefix) + QLatin1Char('*'), connection,
                                            QDBusServiceWatcher::WatchForOwnerChange);
  connect(watcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
          &MprisTitles::OwnerChanged);
  connection.connect({}, kPath, kPropertiesInterface, QStringLiteral("PropertiesChanged"), this,
                     SLOT(OnPropertiesChanged(QDBusMessage)));
  const auto list =
      QDBusMessage::createMethodCall(kBus, QStringLiteral("/"), kBus, QStringLiteral("ListNames"));
  auto* names = new QDBusPendingCallWatcher(connection.asyncCall(list), this);
  connect(names, &QDBusPendingCallWatcher::finished, this, [this, names] {
    names->deleteLater();
    const QDBusPendingReply<QStringList> reply = *names;
    if (reply.isError()) return;
    for (const QString& service : reply.value()) {
      if (service.startsWith(kPlayerPrefix + QLatin1Char('.'))) Add(service, {});
    }
  });
}

void MprisTitles::Clear() {
  watcher_.reset();
  others_.clear();
  Choose();
}

void MprisTitles::OwnerChanged(const QString& service, const QString& oldOwner,
                               const QString& newOwner) {
  if (!oldOwner.isEmpty()) others_.erase(oldOwner);
  if (newOwner.isEmpty()) {
    Choose();
  } else {
    Add(service, newOwner);
  }
}

void MprisTitles::Add(const QString& service, const QString& owner) {
  if (!bus_.Connection() || service == kProxy) return;
  if (!owner.isEmpty()) {
    if (owner == bus_.Connection()->baseService() || others_.size() >= kMostOthers) return;
    others_[owner].service = service;
    Ask(owner, kRootInterface);
    Ask(owner, kPlayerInterface);
    return;
  }
  QDBusMessage ask = QDBusMessage::createMethodCall(kBus, QStringLiteral("/"), kBus,
                                                    QStringLiteral("GetNameOwner"));
  ask << service;
  auto* answer = new QDBusPendingCallWatcher(bus_.Connection()->asyncCall(ask), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, service] {
    answer->deleteLater();
    const QDBusPendingReply<QString> reply = *answer;
    if (!reply.isError() && !reply.value().isEmpty()) Add(service, reply.value());
  });
}

void MprisTitles::Ask(const QString& owner, const QString& interface) {
  QDBusMessage ask =
      QDBusMessage::createMethodCall(owner, kPath, kPropertiesInterface, QStringLiteral("GetAll"));
  ask << interface;
  auto* answer = new QDBusPendingCallWatcher(bus_.Connection()->asyncCall(ask), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, owner] {
    answer->deleteLater();
    const QDBusPendingReply<QVariantMap> reply = *answer;
    if (!reply.isError()) Take(owner, reply.value());
  });
}

void MprisTitles::OnPropertiesChanged(const QDBusMessage& message) {
  const QVariantList arguments = message.arguments();
  if (arguments.size() < 3 || !others_.contains(message.service())) return;
  Take(message.service(), Dictionary(arguments[1]));
  const QStringList invalidated = arguments[2].toStringList();
  if (!invalidated.isEmpty() && bus_.Connection()) Ask(message.service(), arguments[0].toString());
}

void MprisTitles::Take(const QString& owner, const QVariantMap& properties) {
  const auto found = others_.find(owner);
  if (found == others_.end()) return;
  Other& other = found->second;
  if (properties.contains(kIdentity)) other.identity = ShownLine(properties[kIdentity].toString());
  if (properties.contains(kMetadata)) {
    const QVariantMap metadata = Dictionary(properties[kMetadata]);
    const QVariant artist = metadata.value(kArtist);
    other.title = ShownLine(metadata.value(kTitle).toString());
    // A list of them; some players give one text.
    other.artist = ShownLine(artist.metaType() == QMetaType::fromType<QString>()
                                 ? artist.toString()
                                 : artist.toStringList().join(QStringLiteral(", ")));
  }
  if (properties.contains(kPlaybackStatus)) {
    const QString status = properties[kPlaybackStatus].toString();
    if (status == kPlaying && other.status != kPlaying) other.begun = ++begins_;
    other.status = status;
  }
  Choose();
}

void MprisTitles::Choose() {
  const auto rank = [](const auto& entry) {
    const Other& other = entry.second;
    return std::pair(other.status == kPlaying, other.begun);
  };
  const auto heard = std::ranges::max_element(others_, {}, rank);
  OthersTrack track;
  if (heard != others_.end() && heard->second.begun > 0) {
    const Other& other = heard->second;
    track = {.player = other.identity.isEmpty() ? other.service.section(QLatin1Char('.'), 3, 3)
                                                : other.identity,
             .title = other.title,
             .artist = other.artist,
             .isPaused = other.status != kPlaying};
  }
  if (track == track_) return;
  track_ = track;
  emit Changed();
}

} // namespace halvenor
