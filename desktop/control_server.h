// The running program's ear for `halvenor --control`.
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

/// Where the socket lies: in $XDG_RUNTIME_DIR. Empty where that is not set.
QString ControlSocketPath();

/// Listens on the control socket, which only its owner can open. Of several programs the first one
/// has it; when that ends another takes over. A caller says one line and gets one line; who says
/// too much, too little or too slowly is dropped.
class ControlServer final : public QObject {
  Q_OBJECT

public:
  /// Carries out a command; why it could not, empty: it could.
  using Run = std::function<QString(const QStringList& words)>;

  explicit ControlServer(Run run);
  ~ControlServer() override;

private:
  void TryToListen();
  void TakeConnections();
  void Hear(QLocalSocket& socket);
  void Answer(QLocalSocket& socket, const QByteArray& line);

  const Run run_;
  std::unique_ptr<QLockFile> lock_; ///< held by the program that has the socket
  QLocalServer server_;
  QTimer retry_;
  std::deque<QPointer<QLocalSocket>> callers_;
};

} // namespace halvenor
