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

ProgramSettings::ProgramSettings() : QSettings(SettingsFile(), QSettings::IniFormat) {
  TellOfFailure();
}

ProgramSettings::~ProgramSettings() {
  sync();
  TellOfFailure();
}

bool ProgramSettings::event(QEvent* event) {
  const bool handled = QSettings::event(event);
  if (event->type() == QEvent::UpdateRequest) TellOfFailure(); // it has just been written
  return handled;
}

void ProgramSettings::TellOfFailure() {
  if (told_ || status() == NoError) return;
  told_ = true;
  PrintError(status() == FormatError
                 ? tr("%1: not all of these settings can be read").arg(fileName())
                 : tr("%1: the settings cannot be kept").arg(fileName()));
}

} // namespace halvenor
