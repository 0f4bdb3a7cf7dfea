// Keeps the screen awake.
#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusUnixFileDescriptor>

namespace halvenor {

/// Inhibits the desktop's screen saver, else asks the desktop portal, else the login manager. It is
/// no error if none of them exists: then nothing darkens the screen.
class ScreenSaver final : public QObject {
  Q_OBJECT

public:
  ~ScreenSaver() override { SetInhibited(false); }

  /// Works in the background; a request that is no longer wanted when the answer comes is undone.
  void SetInhibited(bool inhibited);

private:
  void Ask(std::size_t way);
  void Keep(std::size_t way, const QDBusMessage& answer);
  void TakeBack();

  bool wanted_ = false;
  bool asking_ = false;
  QDBusMessage undo_; ///< the call that ends the present inhibition
  QDBusConnection undoBus_{QString()};
  QDBusUnixFileDescriptor lock_; ///< of the login manager; inhibits while it is open
};

} // namespace halvenor
