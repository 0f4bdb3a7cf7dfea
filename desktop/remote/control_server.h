// Receives the commands of `halvenor --control`.
#pragma once

#include <QtCore/QLockFile>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>

#include <deque>
#include <functional>
#include <memory>

namespace halvenor {

/// The socket, in $XDG_RUNTIME_DIR; empty where that is not set.
QString ControlSocketPath();

/// Listens on the control socket, which only its owner can open. Of several programs the first one
/// has it; when that ends, another takes over. A caller sends one line and gets one line. Callers
/// that send too much, nothing, or too slowly are dropped.
class ControlServer final : public QObject {
  Q_OBJECT

public:
  /// Carries out a command. Why not; empty: done.
  using Run = std::function<QString(const QStringList& words)>;

  explicit ControlServer(Run run);
  ~ControlServer() override;

signals:
  /// One line for a person: why no commands can be received.
  void Reported(const QString& line);

private:
  void TryToListen();
  void TakeConnections();
  void Receive(QLocalSocket& socket);
  void Answer(QLocalSocket& socket, const QByteArray& line);

  const Run run_;
  std::unique_ptr<QLockFile> lock_; ///< held by the program that has the socket
  QLocalServer server_;
  QTimer retry_;
  std::deque<QPointer<QLocalSocket>> callers_;
};

} // namespace halvenor
