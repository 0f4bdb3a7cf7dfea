// Does to the program's window, over and over, what the first argument names, as often as the
// second says; then tells what that left behind. The third is the plug-in.
#include "desktop/program_settings.h"
#include "desktop/window/main_window.h"
#include "host/preference_store.h"
#include "tests/support/process_use.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QThread>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string_view>

namespace {

using namespace halvenor;

// Lets the program run until `condition` holds, at most for a while.
bool RunUntil(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(5000);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QApplication::processEvents(QEventLoop::AllEvents, 10);
    QThread::msleep(1);
  }
  return true;
}

void RunFor(int milliseconds) {
  const QDeadlineTimer deadline(milliseconds);
  RunUntil([&] { return deadline.hasExpired(); });
}

struct Exercise {
  std::string_view name;
  bool (*once)(MainWindow& window, const PluginHost& plugin, int turn);
};

const Exercise kExercises[] = {
    {"show",
     [](MainWindow& window, const PluginHost& plugin, int) {
       window.hide();
       // A window manager can lose a window that comes back before it has seen it go.
       RunFor(30);
       window.show();
       return RunUntil([&] { return window.windowHandle()->isExposed() && plugin.IsShown(); });
     }},
    {"full",
     [](MainWindow& window, const PluginHost& plugin, int) {
       const QSize before = window.size();
       window.SetFullScreen(true);
       const bool full = RunUntil([&] { return window.size() == window.screen()->size(); });
       window.SetFullScreen(false);
       return RunUntil([&] { return window.size() == before; }) && full && plugin.IsShown();
     }},
    {"resize",
     [](MainWindow& window, const PluginHost& plugin, int turn) {
       window.resize(400 + turn * 37 % 500, 300 + turn * 53 % 300);
       RunFor(5);
       return plugin.IsShown();
     }},
};

int Run(const Exercise& exercise, int turns, const char* path) {
  std::string error;
  std::unique_ptr<Visualizer> visualizer = Visualizer::Create(
      path, std::make_unique<FilePreferenceStore>(FilePreferenceStore::DefaultFolder()), error);
  if (!visualizer) return std::fprintf(stderr, "%s\n", error.c_str()), EXIT_FAILURE;
  PluginHost& plugin = visualizer->Plugin();
  ProgramSettings settings;
  Player player(plugin, settings);
  MainWindow window(std::move(visualizer), player, settings, [] { return std::string(); });
  window.show();
  int done = RunUntil([&] { return plugin.IsShown(); }) ? 0 : -1;
  constexpr int kFirst = 10; // until all is there that stays
  long memory = 0;
  std::ptrdiff_t files = 0;
  for (; done >= 0 && done < turns + kFirst; ++done) {
    if (done <= kFirst) files = std::max(files, OpenFiles()); // buffers come and go
    if (done == kFirst) memory = MemoryInUse();
    if (!exercise.once(window, plugin, done)) break;
  }
  RunFor(300);
  RunUntil([&] { return OpenFiles() <= files; }); // a compositor may still hold a buffer
  std::fprintf(stderr, "turns %d files %+td memory %+ld kB\n", done - kFirst, OpenFiles() - files,
               MemoryInUse() - memory);
  std::fflush(nullptr);
  window.End();
  std::_Exit(EXIT_SUCCESS); // Qt's Wayland back end may wait for ever in its end
}

} // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  if (argc != 4) return EXIT_FAILURE;
  for (const Exercise& exercise : kExercises) {
    if (exercise.name == argv[1]) return Run(exercise, std::atoi(argv[2]), argv[3]);
  }
  return EXIT_FAILURE;
}
