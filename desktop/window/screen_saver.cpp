#include "desktop/window/screen_saver.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>

#include <iterator>

namespace halvenor {
namespace {

QVariant Reason() {
  return QCoreApplication::translate("halvenor::ScreenSaver", "Showing music in full screen");
}

QVariant ProgramName() {
  return QStringLiteral("Halvenor");
}

// The services that can inhibit, in the order in which they are tried.
const struct {
  QDBusConnection (*bus)();
  const char* service;
  const char* path;
  const char* interface;
  QVariantList (*arguments)();
} kWays[] = {
    {QDBusConnection::sessionBus, "org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver",
     "org.freedesktop.ScreenSaver",
     [] {
       return QVariantList{ProgramName(), Reason()};
     }},
    {QDBusConnection::sessionBus, "org.freedesktop.portal.Desktop",
     "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Inhibit",
     [] {
       constexpr uint kIdle = 8;
       return QVariantList{QString(), kIdle, QVariantMap{{QStringLiteral("reason"), Reason()}}};
     }},
    {QDBusConnection::systemBus, "org.freedesktop.login1", "/org/freedesktop/login1",
     "org.freedesktop.login1.Manager",
     [] {
       return QVariantList{QStringLiteral("idle"), ProgramName(), Reason(),
                           QStringLiteral("block")};
     }},
};

} // namespace

void ScreenSaver::SetInhibited(bool inhibited) {
  if (inhibited == wanted_) return;
  wanted_ = inhibited;
  if (asking_) return; // the answer decides what comes next
  wanted_ ? Ask(0) : TakeBack();
}

void ScreenSaver::Ask(std::size_t way) {
  asking_ = way < std::size(kWays);
  if (!asking_) return;
  const auto& row = kWays[way];
  QDBusMessage call =
      QDBusMessage::createMethodCall(QLatin1String(row.service), QLatin1String(row.path),
                                     QLatin1String(row.interface), QStringLiteral("Inhibit"));
  call.setArguments(row.arguments());
  call.setAutoStartService(false);
  auto* watcher = new QDBusPendingCallWatcher(row.bus().asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, way, watcher] {
    watcher->deleteLater();
    if (watcher->isError()) {
      wanted_ ? Ask(way + 1) : void(asking_ = false);
    } else {
      Keep(way, watcher->reply());
    }
  });
}

void ScreenSaver::Keep(std::size_t way, const QDBusMessage& answer) {
  asking_ = false;
  const auto& row = kWays[way];
  const QVariant token = answer.arguments().value(0);
  undoBus_ = row.bus();
  if (token.canConvert<QDBusUnixFileDescriptor>()) {
    lock_ = token.value<QDBusUnixFileDescriptor>();
  } else if (token.canConvert<QDBusObjectPath>()) {
    undo_ = QDBusMessage::createMethodCall(
        QLatin1String(row.service), token.value<QDBusObjectPath>().path(),
        QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Close"));
  } else {
    undo_ =
        QDBusMessage::createMethodCall(QLatin1String(row.service), QLatin1String(row.path),
                                       QLatin1String(row.interface), QStringLiteral("UnInhibit"));
    undo_.setArguments({token});
  }
  if (!wanted_) TakeBack();
}

void ScreenSaver::TakeBack() {
  if (undo_.type() == QDBusMessage::MethodCallMessage) undoBus_.send(undo_);
  undo_ = QDBusMessage();
  lock_ = QDBusUnixFileDescriptor();
}

} // namespace halvenor
