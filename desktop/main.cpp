// The desktop program: a sound file and its picture in a window.
#include "desktop/main_window.h"
#include "desktop/messages.h"
#include "desktop/player.h"
#include "desktop/program_settings.h"
#include "desktop/quit_signals.h"
#include "host/install_paths.h"
#include "host/log_capture.h"
#include "platform/ports.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {
namespace {

struct Arguments {
  std::filesystem::path plugin;
  QString medium;
};

void Describe(QCommandLineParser& parser) {
  parser.setApplicationDescription(
      QStringLiteral("Plays a sound file and shows it as a moving picture.\n\nKeys:\n") +
      MainWindow::KeyHelp());
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addOption({QStringLiteral("plugin"),
                    QStringLiteral("The visualizer to show instead of the installed one: a bundle "
                                   "or a module."),
                    QStringLiteral("PATH")});
  parser.addPositionalArgument(
      QStringLiteral("FILE"),
      QStringLiteral("A sound file or the address of one; without it the built-in tune plays."),
      QStringLiteral("[FILE]"));
}

std::filesystem::path BuiltInTune() {
  return ExecutableFolder().parent_path() / "share/halvenor/halvenor-demo.opus";
}

// What is wrong with `medium` that can be seen without opening it; empty: nothing.
QString ObviousFault(const QString& medium) {
  if (medium.contains(QLatin1String("://"))) return {};
  const QFileInfo file(medium);
  if (!file.exists()) return QStringLiteral("%1: there is no such file").arg(medium);
  if (file.isDir()) return QStringLiteral("%1: this is a folder").arg(medium);
  if (!file.isReadable()) return QStringLiteral("%1: the file cannot be read").arg(medium);
  return {};
}

// The command line as it is given to Qt, which takes "--plugin PATH" for an option of its own but
// leaves "--plugin=PATH" alone.
class CommandLine {
public:
  CommandLine(int argc, char** argv) {
    for (int i = 0; i < argc; ++i) {
      const bool followed = i > 0 && i + 1 < argc && std::string_view(argv[i]) == "--plugin";
      words_.push_back(followed ? std::string("--plugin=") + argv[i + 1] : argv[i]);
      if (followed) ++i;
    }
    for (std::string& word : words_)
      pointers_.push_back(word.data());
    count_ = static_cast<int>(pointers_.size());
    pointers_.push_back(nullptr);
  }

  int& Count() { return count_; }
  char** Words() { return pointers_.data(); }
  [[nodiscard]] bool Has(std::string_view word) const {
    return std::ranges::count(words_, word) > 0;
  }

private:
  std::deque<std::string> words_; // whose addresses stay
  std::vector<char*> pointers_;
  int count_ = 0;
};

// The help and the version are told with or without a display.
bool AsksOnlyForText(const CommandLine& line) {
  constexpr std::string_view kTextOptions[] = {"-h", "--help", "--help-all", "-v", "--version"};
  return std::ranges::any_of(kTextOptions, [&](std::string_view word) { return line.Has(word); });
}

int ShowWindow(const Arguments& arguments) {
  LogCapture log(LogCapture::Echo::StandardError, kProgramName);
  std::string error;
  std::unique_ptr<Visualizer> visualizer = Visualizer::Create(
      arguments.plugin, std::make_unique<FilePreferenceStore>(FilePreferenceStore::DefaultFolder()),
      error);
  if (!visualizer) {
    PrintError(QString::fromStdString(error));
    return EXIT_FAILURE;
  }
  ProgramSettings settings;
  Player player(visualizer->Plugin(), settings);
  // The medium begins once, with the first picture.
  QObject::connect(
      visualizer.get(), &Visualizer::Shown, &player, [&] { player.Open({arguments.medium}); },
      Qt::SingleShotConnection);
  MainWindow window(std::move(visualizer), player, settings, [&log] { return log.TakeText(); });
  QuitSignals quitSignals;
  QObject::connect(&quitSignals, &QuitSignals::Received, &window, [&window] {
    window.close();
    QCoreApplication::quit();
  });
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
  QCommandLineParser parser;
  Describe(parser);
  parser.process(*qApp);
  const QStringList media = parser.positionalArguments();
  if (media.size() > 1) {
    PrintError(QStringLiteral("one FILE at a time, please (see --help)"));
    return EXIT_FAILURE;
  }
  if (!DrawingArea::IsPossible()) {
    PrintError(QStringLiteral("the window system \"%1\" is neither X11 nor Wayland")
                   .arg(QGuiApplication::platformName()));
    return EXIT_FAILURE;
  }
  const QString medium =
      media.isEmpty() ? QString::fromStdString(BuiltInTune().string()) : media.front();
  if (const QString fault = ObviousFault(medium); !fault.isEmpty()) {
    PrintError(fault);
    return EXIT_FAILURE;
  }
  Arguments arguments{InstalledPluginPath(), medium};
  if (parser.isSet(QStringLiteral("plugin"))) {
    arguments.plugin = parser.value(QStringLiteral("plugin")).toStdString();
  }
  return ShowWindow(arguments);
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
  QCoreApplication::setOrganizationName(QString::fromLatin1(kProgramName));
  QSettings::setDefaultFormat(QSettings::IniFormat);
  QCoreApplication::setApplicationVersion(QStringLiteral(HALVENOR_VERSION));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Halvenor"));
  CommandLine line(argc, argv);
  if (AsksOnlyForText(line)) {
    QCoreApplication application(line.Count(), line.Words());
    return Run();
  }
  std::unique_ptr<QApplication> application;
  {
    StartingMessages held;
    application = std::make_unique<QApplication>(line.Count(), line.Words());
  }
  const int status = Run();
  LeaveWithoutWaylandTeardown(status);
  return status;
}
