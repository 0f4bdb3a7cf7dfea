#include "desktop/control_client.h"

#include "desktop/control_commands.h"
#include "desktop/control_server.h"
#include "desktop/media_arguments.h"
#include "desktop/messages.h"
#include "desktop/shown_text.h"

#include <QtCore/QDeadlineTimer>
#include <QtNetwork/QLocalSocket>

#include <cstdlib>

namespace halvenor {
namespace {

constexpr int kUsageFault = 2;
constexpr int kPatienceMilliseconds = 10'000;

int Fail(const QString& line) {
  PrintError(line);
  return EXIT_FAILURE;
}

} // namespace

int SendControl(QStringList words) {
  if (const QString fault = ControlFault(words); !fault.isEmpty()) {
    PrintError(fault + QStringLiteral("; the commands are:\n") + ControlHelp().chopped(1));
    return kUsageFault;
  }
  if (words[0] == QLatin1String("open")) {
    for (auto medium = words.begin() + 1; medium != words.end(); ++medium) {
      if (const QString fault = ObviousFault(*medium); !fault.isEmpty()) return Fail(fault);
      *medium = AbsoluteMedium(*medium);
    }
  }
  const QString path = ControlSocketPath();
  if (path.isEmpty())
    return Fail(QStringLiteral("XDG_RUNTIME_DIR is not set: there is no way to "
                               "the running program"));
  QLocalSocket socket;
  socket.connectToServer(path);
  if (!socket.waitForConnected(kPatienceMilliseconds))
    return Fail(QStringLiteral("no running program to control"));
  socket.write(WriteRequest(words));
  const QDeadlineTimer patience(kPatienceMilliseconds);
  while (!socket.canReadLine() &&
         socket.waitForReadyRead(static_cast<int>(patience.remainingTime())))
    ;
  const QString answer = QString::fromUtf8(socket.readLine()).trimmed();
  if (answer == QLatin1String("ok")) return EXIT_SUCCESS;
  if (answer.isEmpty()) return Fail(QStringLiteral("the running program does not answer"));
  return Fail(ShownLine(answer.section(QLatin1Char(' '), 1)));
}

} // namespace halvenor
