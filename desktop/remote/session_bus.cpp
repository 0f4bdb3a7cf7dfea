#include "desktop/remote/session_bus.h"

#include <QtCore/QFileInfo>

namespace halvenor {
namespace {

constexpr int kBusRetryMilliseconds = 5000;

// Where there is no bus, the library would start one, or wait for a display.
bool IsThere() {
  if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) return true;
  const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
  return !folder.isEmpty() && QFileInfo::exists(folder + QStringLiteral("/bus"));
}

QString NameOf(unsigned attempt) {
  return QStringLiteral("halvenor-session-%1").arg(attempt);
}

} // namespace

SessionBus::SessionBus() {
  connect(&retry_, &QTimer::timeout, this, &SessionBus::Try);
  retry_.start(0);
}

SessionBus::~SessionBus() {
  Forget();
}

void SessionBus::Try() {
  retry_.start(kBusRetryMilliseconds);
  if (!IsThere()) return;
  // A lost connection stays lost, so each try needs a new name.
  QDBusConnection connection =
      QDBusConnection::connectToBus(QDBusConnection::SessionBus, NameOf(++tries_));
  if (!connection.isConnected()) {
    QDBusConnection::disconnectFromBus(NameOf(tries_));
    return;
  }
  retry_.stop();
  connection_ = connection;
  connection.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                     QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                     this, SLOT(OnDisconnected()));
  emit Connected();
}

void SessionBus::OnDisconnected() {
  Forget();
  retry_.start(kBusRetryMilliseconds);
  emit Lost();
}

void SessionBus::Forget() {
  if (!connection_) return;
  connection_.reset();
  QDBusConnection::disconnectFromBus(NameOf(tries_));
}

} // namespace halvenor
