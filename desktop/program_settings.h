// What people chose in the program's window, kept in one file.
#pragma once

#include <QtCore/QSettings>

namespace halvenor {

/// halvenor.conf in the user's folder for preferences. What another instance writes meanwhile is
/// kept, key by key. When it cannot be written, one line on standard error says so, once, and the
/// program goes on.
class ProgramSettings final : public QSettings {
  Q_OBJECT

public:
  ProgramSettings();
  ~ProgramSettings() override;

protected:
  bool event(QEvent* event) override;

private:
  void TellOfFailure();

  bool told_ = false;
};

} // namespace halvenor
