// What the user chose in the program's window, kept in one file.
#pragma once

#include <QtCore/QSettings>

namespace halvenor {

/// halvenor.conf in the user's configuration folder. What another instance writes meanwhile is
/// kept, key by key. A failure to read or write is reported once, and the program goes on.
class ProgramSettings final : public QSettings {
  Q_OBJECT

public:
  ProgramSettings();
  /// Reports on standard error what `Reported` could not.
  ~ProgramSettings() override;

  /// Reports a failure that has happened so far: to be called when somebody listens.
  void Check();

signals:
  /// One line for a person, once.
  void Reported(const QString& line);

protected:
  bool event(QEvent* event) override;

private:
  [[nodiscard]] QString Failure() const;

  bool reported_ = false;
};

} // namespace halvenor
