// SIGINT, SIGTERM and SIGHUP as events.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

#include <memory>

namespace halvenor {

/// Turns the signals that ask a process to end into a Qt signal, so that it can clean up. One at a
/// time in a process.
class QuitSignals final : public QObject {
  Q_OBJECT

public:
  QuitSignals();

signals:
  void Received();

private:
  std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace halvenor
