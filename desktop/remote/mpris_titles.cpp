#include "desktop/remote/mpris_titles.h"

#include "desktop/remote/mpris_service.h"
#include "desktop/shown_text.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>

#include <algorithm>

namespace halvenor {
namespace {

using namespace mpris;

// A proxy for the active player: following it would only repeat everything.
const QString kProxy = QStringLiteral("org.mpris.MediaPlayer2.playerctld");
const QString kBus = QStringLiteral("org.freedesktop.DBus");
constexpr std::size_t kMostOthers = 64;
constexpr int kPauseMilliseconds = 200; // between two rounds of questions

// The value as a dictionary; empty for anything else.
QVariantMap Dictionary(const QVariant& value) {
  if (value.metaType() == QMetaType::fromType<QVariantMap>()) return value.toMap();
  if (value.metaType() != QMetaType::fromType<QDBusArgument>()) return {};
  const auto argument = value.value<QDBusArgument>();
  if (argument.currentSignature() != QStringLiteral("a{sv}")) return {};
  return qdbus_cast<QVariantMap>(argument);
}

} // namespace

MprisTitles::MprisTitles(SessionBus& bus) : bus_(bus) {
  pause_.setSingleShot(true);
  pause_.setInterval(kPauseMilliseconds);
  connect(&pause_, &QTimer::timeout, this, &MprisTitles::AskStale);
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
      if (service.startsWith(kPlayerPrefix + QLatin1Char('.'))) FindOwner(service);
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

void MprisTitles::FindOwner(const QString& service) {
  if (!bus_.Connection()) return;
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

void MprisTitles::Add(const QString& service, const QString& owner) {
  if (!bus_.Connection() || service == kProxy) return;
  if (owner == bus_.Connection()->baseService() || others_.size() >= kMostOthers) return;
  Other& other = others_[owner] = {};
  other.service = service;
  AskSoon();
}

// Reads nothing of the message but its sender: what it carries may be huge.
void MprisTitles::OnPropertiesChanged(const QDBusMessage& message) {
  const auto found = others_.find(message.service());
  if (found == others_.end()) return;
  found->second.isStale = true;
  AskSoon();
}

void MprisTitles::AskSoon() {
  if (!pause_.isActive()) AskStale();
}

// A player that does not answer is not asked again until the bus gives up waiting for it.
void MprisTitles::AskStale() {
  if (!bus_.Connection()) return;
  for (auto& [owner, other] : others_) {
    if (!other.isStale || other.unanswered > 0) continue;
    other.isStale = false;
    if (other.identity.isEmpty()) Ask(owner, kRootInterface);
    Ask(owner, kPlayerInterface);
    pause_.start();
  }
}

void MprisTitles::Ask(const QString& owner, const QString& interface) {
  QDBusMessage ask =
      QDBusMessage::createMethodCall(owner, kPath, kPropertiesInterface, QStringLiteral("GetAll"));
  ask << interface;
  ++others_.at(owner).unanswered;
  auto* answer = new QDBusPendingCallWatcher(bus_.Connection()->asyncCall(ask), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, owner] {
    answer->deleteLater();
    const auto found = others_.find(owner);
    if (found == others_.end()) return;
    --found->second.unanswered;
    const QDBusPendingReply<QVariantMap> reply = *answer;
    if (!reply.isError()) Take(owner, reply.value());
    if (found->second.isStale) AskSoon();
  });
}

void MprisTitles::Take(const QString& owner, const QVariantMap& properties) {
  Other& other = others_.at(owner);
  if (properties.contains(kIdentity)) other.identity = ShownLine(properties[kIdentity].toString());
  if (properties.contains(kMetadata)) {
    const QVariantMap metadata = Dictionary(properties[kMetadata]);
    const QVariant artist = metadata.value(kArtist);
    other.title = ShownLine(metadata.value(kTitle).toString());
    // A list; some players send a single text.
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
