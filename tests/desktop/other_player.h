// Another player of the session: small, but a real one on D-Bus (MPRIS 2).
#pragma once

#include <QtCore/QMutex>
#include <QtCore/QThread>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusVirtualObject>

namespace halvenor::test {

/// Answers on a thread of its own, as another process would, until it is destroyed.
class OtherPlayer final : public QDBusVirtualObject {
public:
  /// Joins the bus at `address` as org.mpris.MediaPlayer2.`name`, stopped and without a title.
  OtherPlayer(const QString& address, const QString& name);
  ~OtherPlayer() override;

  /// Sets properties of the player and tells the bus.
  void Say(const QVariantMap& properties);
  void Say(const QString& status, const QString& title, const QVariant& artist);

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  QString introspect(const QString&) const override { return {}; }

private:
  const QString name_;
  QDBusConnection connection_;
  QThread thread_;
  QMutex mutex_;
  QVariantMap properties_;
};

} // namespace halvenor::test
