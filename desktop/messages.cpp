#include "desktop/messages.h"

#include "files/printable.h"

#include <QtCore/QStringList>

#include <cstdio>
#include <cstdlib>

namespace halvenor {
namespace {

QStringList heldBack; // used by the thread that starts the program

[[noreturn]] void EndWithoutDisplay() {
  const char* const wayland = std::getenv("WAYLAND_DISPLAY");
  const char* const x11 = std::getenv("DISPLAY");
  PrintError(QStringLiteral("Cannot open a display (WAYLAND_DISPLAY is %1, DISPLAY is %2)")
                 .arg(wayland ? wayland : "not set", x11 ? x11 : "not set"));
  std::_Exit(EXIT_FAILURE);
}

void HoldBack(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type == QtFatalMsg) EndWithoutDisplay();
  heldBack.append(text);
}

} // namespace

void PrintError(const QString& line) {
  std::fprintf(stderr, "%s: %s\n", kProgramName,
               Printable(line.toStdString(), kMessageCharacters).c_str());
}

StartingMessages::StartingMessages() {
  qInstallMessageHandler(HoldBack);
}

StartingMessages::~StartingMessages() {
  qInstallMessageHandler(nullptr);
  for (const QString& text : heldBack)
    PrintError(text);
  heldBack.clear();
}

} // namespace halvenor
