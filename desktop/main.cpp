// The desktop program: a sound file and its picture in a window.
#include "desktop/main_window.h"
#include "desktop/messages.h"
#include "desktop/quit_signals.h"
#include "host/install_paths.h"
#include "host/log_capture.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QFileInfo>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <filesystem>
#include <span>
#include <string_view>

namespace halvenor {
namespace {

struct Arguments {
  std::filesystem::path plugin;
  std::string medium;
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

// The help and the version are told with or without a display.
bool AsksOnlyForText(std::span<char*> arguments) {
  constexpr std::string_view kTextOptions[] = {"-h", "--help", "--help-all", "-v", "--version"};
  return std::any_of(arguments.begin(), arguments.end(), [&](const char* argument) {
    return std::ranges::count(kTextOptions, std::string_view(argument)) > 0;
  });
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
  MainWindow window(std::move(visualizer), arguments.medium, [&log] { return log.TakeText(); });
  QuitSignals quitSignals;
  QObject::connect(&quitSignals, &QuitSignals::Received, &window, [&window] {
    window.close();
    QCoreApplication::quit();
  });
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, &window, &MainWindow::End);
  window.show();
  QApplication::exec();
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
  Arguments arguments{InstalledPluginPath(), medium.toStdString()};
  if (parser.isSet(QStringLiteral("plugin"))) {
    arguments.plugin = parser.value(QStringLiteral("plugin")).toStdString();
  }
  return ShowWindow(arguments);
}

} // namespace
} // namespace halvenor

int main(int argc, char** argv) {
  using namespace halvenor;
  QCoreApplication::setApplicationName(QString::fromLatin1(kProgramName));
  QCoreApplication::setApplicationVersion(QStringLiteral(HALVENOR_VERSION));
  QGuiApplication::setApplicationDisplayName(QStringLiteral("Halvenor"));
  if (AsksOnlyForText({argv + 1, static_cast<std::size_t>(std::max(argc - 1, 0))})) {
    QCoreApplication application(argc, argv);
    return Run();
  }
  std::unique_ptr<QApplication> application;
  {
    StartingMessages held;
    application = std::make_unique<QApplication>(argc, argv);
  }
  return Run();
}
