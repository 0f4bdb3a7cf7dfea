// The desktop program: a player that shows music as a moving picture in a window.
#include "desktop/command_line.h"
#include "desktop/messages.h"
#include "desktop/playback/player.h"
#include "desktop/program_settings.h"
#include "desktop/quit_signals.h"
#include "desktop/remote/control_client.h"
#include "desktop/remote/control_commands.h"
#include "desktop/remote/control_server.h"
#include "desktop/remote/mpris_service.h"
#include "desktop/remote/mpris_titles.h"
#include "desktop/remote/session_bus.h"
#include "desktop/window/drawing_area.h"
#include "desktop/window/main_window.h"
#include "desktop/window/window_system.h"
#include "host/install_paths.h"
#include "host/log_capture.h"
#include "platform/ports.h"
#include "translations/translation.h"

#include <QtGui/QIcon>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

namespace halvenor {
namespace {

// Every connection to other programs.
class OtherPrograms {
public:
  OtherPrograms(Player& player, MainWindow& window)
      : titles_(bus_), service_(bus_, player, window),
        control_(
            [&window](const QStringList& words) { return RunControl(words, window.Actions()); }) {
    QObject::connect(&titles_, &MprisTitles::Changed, &player,
                     [this, &player] { player.SetOthersTrack(titles_.Track()); });
    QObject::connect(&control_, &ControlServer::Reported, &window, &MainWindow::Report);
    QObject::connect(&quitSignals_, &QuitSignals::Received, &window,
                     [&window] { window.Actions().Run(UserAction::Quit); });
  }

private:
  SessionBus bus_;
  MprisTitles titles_;
  MprisService service_;
  ControlServer control_;
  QuitSignals quitSignals_;
};

// What the program offers to the plug-in beside its window: alerts and notices that people see.
// Both come from inside messages, so they are shown from the event loop.
class PluginVoice {
public:
  explicit PluginVoice(MainWindow& window) {
    shown_ = &window;
    SetFrontWindow(reinterpret_cast<WindowRef>(window.winId()));
    SetAlertSound([](int) {
      QApplication::beep();
      QMetaObject::invokeMethod(shown_, &MainWindow::ReportAlert, Qt::QueuedConnection);
    });
    SetNoticeReceiver(
        [](void*, const char* message) {
          QMetaObject::invokeMethod(
              shown_, [text = QString::fromUtf8(message)] { shown_->ReportNotice(text); },
              Qt::QueuedConnection);
        },
        nullptr);
  }
  ~PluginVoice() {
    SetNoticeReceiver(nullptr, nullptr);
    SetAlertSound(nullptr);
    SetFrontWindow(nullptr);
  }
  PluginVoice(const PluginVoice&) = delete;
  PluginVoice& operator=(const PluginVoice&) = delete;

private:
  static inline MainWindow* shown_ = nullptr;
};

int ShowWindow(const StartOptions& options) {
  const Translation translation(QStringLiteral(HALVENOR_CARRIED_TEXTS), Translation::Texts::WithQt);
  LogCapture log(options.verbose ? LogCapture::Echo::Everything : LogCapture::Echo::Errors,
                 kProgramName);
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
  // The sound starts once, with the first picture.
  QObject::connect(visualizer.get(), &Visualizer::Shown, &player, begin, Qt::SingleShotConnection);
  MainWindow window(std::move(visualizer), player, settings, [&log] { return log.TakeText(); });
  QObject::connect(&settings, &ProgramSettings::Reported, &window, &MainWindow::Report);
  settings.Check();
  const OtherPrograms others(player, window);
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, &window, &MainWindow::End);
  window.show();
  const PluginVoice voice(window);
  QApplication::exec();
  return window.HasFailed() ? EXIT_FAILURE : EXIT_SUCCESS;
}

int Run() {
  int exitStatus = EXIT_SUCCESS;
  const std::optional<StartOptions> options = ReadCommandLine(exitStatus);
  if (!options) return exitStatus;
  if (!DrawingArea::IsPossible()) {
    PrintError(QStringLiteral("The window system \"%1\" is neither X11 nor Wayland")
                   .arg(QGuiApplication::platformName()));
    return EXIT_FAILURE;
  }
  return ShowWindow(*options);
}

// Wayland finds the icon by the name of the menu entry; under X11 the window carries it.
void SetIcon() {
  const QString id = QStringLiteral("org.halvenor.Halvenor");
  QGuiApplication::setDesktopFileName(id);
  const auto icons = ExecutableFolder().parent_path() / "share/icons/hicolor/128x128/apps";
  QGuiApplication::setWindowIcon(QIcon(QString::fromStdString(icons.string()) + QLatin1Char('/') +
                                       id + QStringLiteral(".png")));
}

// Qt 6.4's Wayland back end sometimes hangs in its destructor, waiting for its own reading thread.
// Everything else has ended by then, the plug-in too.
void LeaveWithoutWaylandTeardown(int status) {
  if (!IsOnWayland()) return;
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
  SetIcon();
  const int status = Run();
  LeaveWithoutWaylandTeardown(status);
  return status;
}
