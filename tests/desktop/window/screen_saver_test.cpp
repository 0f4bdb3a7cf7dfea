// Keeping the screen awake, on a bus of the suite's own.
#include "desktop/window/screen_saver.h"

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
  {
    ScreenSaver alone;
    alone.SetInhibited(true); // nobody there to be asked
    RunFor(300);
  }
  FakeScreenSaver desktop;
  ScreenSaver saver;
  QDBusConnection bus = QDBusConnection::connectToBus(QString(address), "desktop");
  ASSERT_TRUE(bus.registerObject("/org/freedesktop/ScreenSaver", &desktop,
                                 QDBusConnection::ExportAllSlots));
  ASSERT_TRUE(bus.registerService("org.freedesktop.ScreenSaver"));
  // That the calls become these, and no more.
  const auto becomes = [&](const QStringList& calls) {
    for (const QDeadlineTimer deadline(20'000); desktop.calls.size() < calls.size();) {
      if (deadline.hasExpired()) return false;
      RunFor(10);
    }
    RunFor(100);
    return desktop.calls == calls;
  };
  const QStringList once{"inhibit Halvenor", "release 42"};
  saver.SetInhibited(true);
  saver.SetInhibited(true);
  EXPECT_TRUE(becomes(once.first(1)));
  saver.SetInhibited(false);
  EXPECT_TRUE(becomes(once));
  saver.SetInhibited(true); // no longer wanted when the answer comes
  saver.SetInhibited(false);
  EXPECT_TRUE(becomes(once + once));
  {
    ScreenSaver brief;
    brief.SetInhibited(true);
    EXPECT_TRUE(becomes(once + once + once.first(1)));
  }
  EXPECT_TRUE(becomes(once + once + once));

  QDBusConnection::disconnectFromBus("desktop");
  daemon.terminate();
  daemon.waitForFinished();
}

} // namespace
} // namespace halvenor::test

#include "screen_saver_test.moc"
