#include "desktop/remote/control_server.h"

#include "desktop/remote/control_commands.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace halvenor {
namespace {

constexpr qint64 kMostBytes = 1 << 20; // of a request
constexpr std::size_t kMostCallers = 16;
constexpr int kPatienceMilliseconds = 5000;
constexpr int kRetryMilliseconds = 5000;

} // namespace

QString ControlSocketPath() {
  const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
  if (!QDir::isAbsolutePath(folder) || !QFileInfo(folder).isDir()) return {};
  return folder + QStringLiteral("/halvenor.sock");
}

ControlServer::ControlServer(Run run) : run_(std::move(run)) {
  const QString path = ControlSocketPath();
  if (path.isEmpty()) return;
  lock_ = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
  lock_->setStaleLockTime(0); // it is stale when its program has ended, whatever its age
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  connect(&server_, &QLocalServer::newConnection, this, &ControlServer::TakeConnections);
  connect(&retry_, &QTimer::timeout, this, &ControlServer::TryToListen);
  retry_.start(0); // from the event loop, where somebody hears of a failure
}

ControlServer::~ControlServer() {
  server_.close();
}

void ControlServer::TryToListen() {
  retry_.setInterval(kRetryMilliseconds);
  if (!lock_->tryLock(0)) {
    if (lock_->error() != QLockFile::LockFailedError)
      retry_.stop(); // the folder cannot be written to
    return;
  }
  retry_.stop();
  const QString path = ControlSocketPath();
  QLocalServer::removeServer(path); // left behind by a program that crashed
  if (!server_.listen(path))
    emit Reported(tr("Commands of --control cannot be received: %1").arg(server_.errorString()));
}

void ControlServer::TakeConnections() {
  while (QLocalSocket* socket = server_.nextPendingConnection()) {
    std::erase_if(callers_, [](const auto& caller) { return caller.isNull(); });
    if (callers_.size() >= kMostCallers) {
      callers_.front()->abort();
      callers_.pop_front();
    }
    callers_.emplace_back(socket);
    socket->setReadBufferSize(kMostBytes + 1);
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] { Receive(*socket); });
    QTimer::singleShot(kPatienceMilliseconds, socket, [socket] { socket->abort(); });
    Receive(*socket);
  }
}

void ControlServer::Receive(QLocalSocket& socket) {
  if (!socket.canReadLine()) {
    if (socket.bytesAvailable() > kMostBytes) socket.abort();
    return;
  }
  disconnect(&socket, &QLocalSocket::readyRead, this, nullptr); // one request each
  Answer(socket, socket.readLine(kMostBytes + 1));
}

void ControlServer::Answer(QLocalSocket& socket, const QByteArray& line) {
  const std::optional<QStringList> words = ReadRequest(line);
  QString fault = words ? ControlFault(*words) : QStringLiteral("Not a request");
  if (fault.isEmpty()) fault = run_(*words);
  socket.write(fault.isEmpty() ? QByteArray("ok\n") : "error " + fault.toUtf8() + '\n');
  socket.flush();
  socket.disconnectFromServer();
}

} // namespace halvenor
