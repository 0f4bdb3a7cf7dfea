// Keeps the screen awake.
#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusUnixFileDescriptor>

namespace halvenor {

/// Asks whoever would darken the screen not to: the desktop's screen saver, else the desktop
/// portal, else the login manager. Nobody there is no error: then nobody darkens the screen.
class ScreenSaver final : public QObject {
  Q_OBJECT

public:
  ~ScreenSaver() override { SetInhibited(false); }

  /// Answers come later; a request that is no longer wanted by then is taken back.
  void SetInhibited(bool inhibited);

private:
  void Ask(std::size_t way);
  void Keep(std::size_t way, const QDBusMessage& answer);
  void TakeBack();

  bool wanted_ = false;
  bool asking_ = false;
  QDBusMessage undo_; ///< what ends the inhibition that is in force
  QDBusConnection undoBus_{QString()};
  QDBusUnixFileDescriptor lock_; ///< the login manager's, in force while open
};

} // namespace halvenor
