#include "tests/desktop/other_player.h"

#include <QtDBus/QDBusMessage>
#include <gtest/gtest.h>

namespace halvenor::test {
namespace {

const QString kPath = "/org/mpris/MediaPlayer2";

} // namespace

OtherPlayer::OtherPlayer(const QString& address, const QString& name)
    : name_(name),
      connection_(QDBusConnection::connectToBus(address, name)), properties_{{"PlaybackStatus",
                                                                              "Stopped"}} {
  moveToThread(&thread_);
  thread_.start();
  EXPECT_TRUE(connection_.registerVirtualObject(kPath, this));
  EXPECT_TRUE(connection_.registerService("org.mpris.MediaPlayer2." + name));
}

OtherPlayer::~OtherPlayer() {
  QDBusConnection::disconnectFromBus(name_);
  thread_.quit();
  thread_.wait();
}

void OtherPlayer::Say(const QVariantMap& properties) {
  const QMutexLocker lock(&mutex_);
  for (auto property = properties.cbegin(); property != properties.cend(); ++property)
    properties_[property.key()] = property.value();
  QDBusMessage signal =
      QDBusMessage::createSignal(kPath, "org.freedesktop.DBus.Properties", "PropertiesChanged");
  signal << "org.mpris.MediaPlayer2.Player" << properties << QStringList();
  connection_.send(signal);
}

void OtherPlayer::Say(const QString& status, const QString& title, const QVariant& artist) {
  Say({{"PlaybackStatus", status},
       {"Metadata", QVariantMap{{"xesam:title", title}, {"xesam:artist", artist}}}});
}

bool OtherPlayer::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  if (message.member() != "GetAll") return false;
  const QMutexLocker lock(&mutex_);
  const bool isPlayer = message.arguments().value(0).toString().endsWith(".Player");
  return connection.send(
      message.createReply(isPlayer ? properties_ : QVariantMap{{"Identity", name_}}));
}

} // namespace halvenor::test
