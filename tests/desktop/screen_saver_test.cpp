// Keeping the screen awake, on a bus of the suite's own.
#include "desktop/screen_saver.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtDBus/QDBusConnection>
#include <gtest/gtest.h>

namespace halvenor::test {

class FakeScreenSaver final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
  QStringList calls;

public slots:
  uint Inhibit(const QString& program, const QString&) {
    calls << "inhibit " + program;
    return 42;
  }
  void UnInhibit(uint cookie) { calls << "release " + QString::number(cookie); }
};

namespace {

void RunFor(int milliseconds) {
  for (const QDeadlineTimer deadline(milliseconds); !deadline.hasExpired();)
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

TEST(ScreenSaverTest, IsInhibitedWhileItIsWantedAndNoLonger) {
  QProcess daemon;
  daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
  ASSERT_TRUE(daemon.waitForReadyRead()) << "dbus-daemon";
  const QByteArray address = daemon.readLine().trimmed();
  qputenv("DBUS_SESSION_BUS_ADDRESS", address);
  qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
  int argc = 0;
  QCoreApplication application(argc, nullptr);
  FakeScreenSaver desktop;
  ScreenSaver saver;

  saver.SetInhibited(true); // nobody there to be asked
  RunFor(300);
  saver.SetInhibited(false);

  QDBusConnection bus = QDBusConnection::connectToBus(QString(address), "desktop");
  ASSERT_TRUE(bus.registerObject("/org/freedesktop/ScreenSaver", &desktop,
                                 QDBusConnection::ExportAllSlots));
  ASSERT_TRUE(bus.registerService("org.freedesktop.ScreenSaver"));
  const QStringList once{"inhibit Halvenor", "release 42"};
  saver.SetInhibited(true);
  saver.SetInhibited(true);
  RunFor(300);
  EXPECT_EQ(desktop.calls, once.first(1));
  saver.SetInhibited(false);
  RunFor(300);
  EXPECT_EQ(desktop.calls, once);
  saver.SetInhibited(true); // no longer wanted when the answer comes
  saver.SetInhibited(false);
  RunFor(300);
  EXPECT_EQ(desktop.calls, once + once);
  {
    ScreenSaver brief;
    brief.SetInhibited(true);
    RunFor(300);
  }
  RunFor(300);
  EXPECT_EQ(desktop.calls, once + once + once);

  QDBusConnection::disconnectFromBus("desktop");
  daemon.terminate();
  daemon.waitForFinished();
}

} // namespace
} // namespace halvenor::test

#include "screen_saver_test.moc"
