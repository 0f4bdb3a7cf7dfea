#include "desktop/remote/control_client.h"

#include "desktop/media_names.h"
#include "desktop/messages.h"
#include "desktop/remote/control_commands.h"
#include "desktop/remote/control_server.h"
#include "desktop/shown_text.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtNetwork/QLocalSocket>

#include <cstdlib>

namespace halvenor {
namespace {

constexpr int kUsageFault = 2;
constexpr int kReplyMilliseconds = 10'000;

int Fail(const QString& line) {
  PrintError(line);
  return EXIT_FAILURE;
}

} // namespace

int SendControl(QStringList words) {
  if (const QString fault = ControlFault(words); !fault.isEmpty()) {
    PrintError(QStringLiteral("%1 (see --help)").arg(fault));
    return kUsageFault;
  }
  if (words[0] == QLatin1String("open")) {
    for (auto medium = words.begin() + 1; medium != words.end(); ++medium) {
      if (const QString fault = ObviousFault(*medium); !fault.isEmpty()) return Fail(fault);
      *medium = ToAbsolute(*medium);
    }
  }
  const QString path = ControlSocketPath();
  if (path.isEmpty())
    return Fail(
        QStringLiteral("XDG_RUNTIME_DIR is not set, so the running program cannot be found"));
  QLocalSocket socket;
  socket.connectToServer(path);
  if (!socket.waitForConnected(kReplyMilliseconds))
    return Fail(QStringLiteral("Halvenor is not running"));
  socket.write(WriteRequest(words));
  const QDeadlineTimer patience(kReplyMilliseconds);
  while (!socket.canReadLine() &&
         socket.waitForReadyRead(static_cast<int>(patience.remainingTime())))
    ;
  const QString answer = QString::fromUtf8(socket.readLine()).trimmed();
  if (answer == QLatin1String("ok")) return EXIT_SUCCESS;
  if (answer.isEmpty()) return Fail(QStringLiteral("The running program does not answer"));
  return Fail(ShownLine(answer.section(QLatin1Char(' '), 1)));
}

} // namespace halvenor
