// The connection to the session's D-Bus.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>

#include <optional>

namespace halvenor {

/// A private connection to the session's D-Bus. Where there is no bus, or when it dies, connects
/// again every few seconds; never starts one.
class SessionBus final : public QObject {
  Q_OBJECT

public:
  /// `Connected` is emitted from the event loop.
  SessionBus();
  ~SessionBus() override;

  /// None while there is no bus.
  [[nodiscard]] const std::optional<QDBusConnection>& Connection() const { return connection_; }

signals:
  void Connected();
  void Lost();

private slots:
  void OnDisconnected();

private:
  void Try();
  void Forget();

  std::optional<QDBusConnection> connection_;
  QTimer retry_;
  unsigned tries_ = 0;
};

} // namespace halvenor
