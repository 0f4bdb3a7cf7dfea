#include "desktop/program_settings.h"

#include "desktop/messages.h"

#include <QtCore/QEvent>
#include <QtCore/QStandardPaths>

namespace halvenor {
namespace {

QString SettingsFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/halvenor/halvenor.conf");
}

} // namespace

ProgramSettings::ProgramSettings() : QSettings(SettingsFile(), QSettings::IniFormat) {}

ProgramSettings::~ProgramSettings() {
  sync();
  if (!reported_ && status() != NoError) PrintError(Failure());
}

bool ProgramSettings::event(QEvent* event) {
  const bool handled = QSettings::event(event);
  if (event->type() == QEvent::UpdateRequest) Check(); // it has just been written
  return handled;
}

void ProgramSettings::Check() {
  if (reported_ || status() == NoError) return;
  reported_ = true;
  emit Reported(Failure());
}

QString ProgramSettings::Failure() const {
  return status() == FormatError
             ? tr("Some settings in %1 cannot be read. Correct the file or remove it.")
                   .arg(fileName())
             : tr("The settings cannot be saved in %1. Check that there is space and that you may "
                  "write there.")
                   .arg(fileName());
}

} // namespace halvenor
