// The desktop program: what is heard, and its picture in a window.
#include "desktop/command_line.h"
#include "desktop/control_client.h"
#include "desktop/control_commands.h"
#include "desktop/control_server.h"
#include "desktop/main_window.h"
#include "desktop/messages.h"
#include "desktop/mpris_service.h"
#include "desktop/mpris_titles.h"
#include "desktop/player.h"
#include "desktop/program_settings.h"
#include "desktop/quit_signals.h"
#include "desktop/remote_window.h"
#include "desktop/session_bus.h"
#include "host/install_paths.h"
#include "host/log_capture.h"
#include "platform/ports.h"

#include <QtGui/QIcon>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace halvenor {
namespace {

// Everything by which other programs reach the player, or the player reaches them.
class OtherPrograms {
public:
  OtherPrograms(Player& player, MainWindow& window)
      : window_(window), titles_(bus_), service_(bus_, player, window_),
        control_([this, &player](const QStringList& words) {
          return RunControl(words, player, window_);
        }) {
    QObject::connect(&titles_, &MprisTitles::Changed, &player,
                     [this, &player] { player.SetOthersTrack(titles_.Track()); });
    QObject::connect(&quitSignals_, &QuitSignals::Received, &window_, &RemoteWindow::Quit);
  }

private:
  RemoteWindow window_;
  SessionBus bus_;
  MprisTitles titles_;
  MprisService service_;
  ControlServer control_;
  QuitSignals quitSignals_;
};

int ShowWindow(const StartOptions& options) {
  LogCapture log(LogCapture::Echo::StandardError, kProgramName);
  std::string error;
  std::unique_ptr<Visualizer> visualizer = Visualizer::Create(
      options.plugin, std::make_unique<FilePreferenceStore>(FilePreferenceStore::DefaultFolder()),
      error);
  if (!visualizer) {
    PrintError(QString::fromStdString(error));
    return EXIT_FAILURE;
  }
  ProgramSettings settings;
  Player player(visualizer->Plugin(), settings);
  const auto begin = [&player, &options] {
    if (options.media.isEmpty()) {
      player.Listen(options.source.value_or(player.ChosenSource()));
    } else {
      player.Open(options.media);
    }
  };
  // The sound begins once, with the first picture.
  QObject::connect(visualizer.get(), &Visualizer::Shown, &player, begin, Qt::SingleShotConnection);
  MainWindow window(std::move(visualizer), player, settings, [&log] { return log.TakeText(); });
  const OtherPrograms others(player, window);
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, &window, &MainWindow::End);
  window.show();
  SetFrontWindow(reinterpret_cast<WindowRef>(window.winId()));
  SetAlertSound([](int) { QApplication::beep(); });
  QApplication::exec();
  SetAlertSound(nullptr);
  SetFrontWindow(nullptr);
  return window.HasFailed() ? EXIT_FAILURE : EXIT_SUCCESS;
}

int Run() {
  int exitStatus = EXIT_SUCCESS;
  const std::optional<StartOptions> options = ReadCommandLine(exitStatus);
  if (!options) return exitStatus;
  if (!DrawingArea::IsPossible()) {
    PrintError(QStringLiteral("the window system \"%1\" is neither X11 nor Wayland")
                   .arg(QGuiApplication::platformName()));
    return EXIT_FAILURE;
  }
  return ShowWindow(*options);
}

// Wayland finds the icon by the name of the menu entry, X11 takes what it is given.
void PutOnIcon() {
  const QString id = QStringLiteral("org.halvenor.Halvenor");
  QGuiApplication::setDesktopFileName(id);
  const auto icons = ExecutableFolder().parent_path() / "share/icons/hicolor/128x128/apps";
  QGuiApplication::setWindowIcon(QIcon(QString::fromStdString(icons.string()) + QLatin1Char('/') +
                                       id + QStringLiteral(".png")));
}

// Qt 6.4's Wayland back end, when it is destroyed, now and then waits for ever for its own reading
// thread. By then everything of ours has ended, the plug-in too, and there is nothing to wait for.
void LeaveWithoutWaylandTeardown(int status) {
  if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) return;
  std::fflush(nullptr);
  std::_Exit(status);
}

} // namespace
} // namespace halvenor

int main(int argc, char** argv) {
  using namespace halvenor;
  QCoreApplication::setApplicationName(QString::fromLatin1(kProgramName));
  QCoreApplication::setApplicationVersion(QStringLiteral(HALVENOR_VERSION));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Halvenor"));
  ProgramWords words(argc, argv);
  if (const std::optional<QStringList> command = words.Control()) {
    const QCoreApplication application(words.Count(), words.Words());
    return SendControl(*command);
  }
  if (words.AsksOnlyForText()) {
    const QCoreApplication application(words.Count(), words.Words());
    return Run();
  }
  std::unique_ptr<QApplication> application;
  {
    StartingMessages held;
    application = std::make_unique<QApplication>(words.Count(), words.Words());
  }
  PutOnIcon();
  const int status = Run();
  LeaveWithoutWaylandTeardown(status);
  return status;
}
