#include "tests/support/display_session.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QThread>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <unistd.h>

namespace halvenor::test {
namespace {

constexpr int kToolMilliseconds = 30'000;

void EndProcess(QProcess& process) {
  if (process.state() == QProcess::NotRunning) return;
  process.terminate();
  if (process.waitForFinished(5000)) return;
  process.kill();
  process.waitForFinished();
}

class X11Session final : public DisplaySession {
public:
  explicit X11Session(double scale) {
    Start("Xvfb", {"-displayfd", "1", "-screen", "0", "1280x800x24", "-nolisten", "tcp"},
          environment_);
    environment_.insert("DISPLAY", ":" + WaitForLine());
    environment_.insert("QT_SCALE_FACTOR", QString::number(scale));
    Start("openbox", {"--startup", "echo ready"}, environment_);
    EXPECT_TRUE(Eventually([&] { return WaitForLine() == "ready"; })) << "openbox";
  }

  void Press(const QString& keys) override { Run("xdotool", QStringList{"key"} + keys.split(' ')); }
  void ResizeWindow(QSize size) override {
    Run("xdotool", {"getactivewindow", "windowsize", QString::number(size.width()),
                    QString::number(size.height())});
  }
  void CloseWindow() override { Press("alt+F4"); }
  void PutWindowAway() override {
    away_ = Run("xdotool", {"getactivewindow"}).trimmed();
    Run("xdotool", {"windowminimize", away_});
  }
  void BringWindowBack() override { Run("xdotool", {"windowactivate", away_}); }

private:
  QString WaitForLine() {
    QProcess& server = *servers_.back();
    Eventually([&] { return server.canReadLine() || (server.waitForReadyRead(50), false); });
    return QString::fromUtf8(server.readLine()).trimmed();
  }
  QByteArray Screenshot() override { return Run("import", {"-window", "root", "ppm:-"}); }

  QString away_;
};

// wlroots' own headless output; keys come from a virtual keyboard.
class WaylandSession final : public DisplaySession {
public:
  explicit WaylandSession(double scale) {
    QDir folder(folder_.path());
    folder.mkdir("sway");
    folder.cd("sway");
    WriteConfiguration(folder.filePath("config"), scale);
    QProcessEnvironment environment = environment_;
    environment.insert("XDG_RUNTIME_DIR", folder.path());
    environment.insert("SWAYSOCK", folder.filePath("ipc"));
    environment.insert("WLR_BACKENDS", "headless");
    environment.insert("WLR_LIBINPUT_NO_DEVICES", "1");
    environment.insert("WLR_RENDERER", "pixman");
    QStringList command{"sway", "-c", folder.filePath("config")};
    if (getuid() == 0) { // it refuses to run as root
      constexpr int kNobody = 65534;
      QFile::setPermissions(folder_.path(), QFile::permissions(folder_.path()) | QFile::ExeOther);
      EXPECT_EQ(chown(qPrintable(folder.path()), kNobody, kNobody), 0);
      command =
          QStringList{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"} + command;
    }
    Start(command.takeFirst(), command, environment);
    QStringList sockets;
    EXPECT_TRUE(Eventually([&] {
      sockets = folder.entryList({"wayland-?"}, QDir::System);
      return !sockets.isEmpty() && QFile::exists(folder.filePath("ipc"));
    })) << "sway does not start";
    environment_.insert("WAYLAND_DISPLAY", folder.filePath(sockets.value(0)));
    environment_.insert("SWAYSOCK", folder.filePath("ipc"));
  }

  void Press(const QString& keys) override {
    QStringList arguments;
    for (const QString& key : keys.split(' ')) {
      QStringList names = key.split('+');
      const QString last = names.takeLast();
      // A moment for the new keyboard to become known, and for what a key before has opened.
      arguments << "-s"
                << "300";
      for (const QString& modifier : names)
        arguments << "-M" << modifier;
      arguments << "-k" << last << "-s"
                << "50";
      for (const QString& modifier : names)
        arguments << "-m" << modifier;
    }
    Run("wtype", arguments);
  }
  void ResizeWindow(QSize size) override {
    Run("swaymsg",
        {"resize", "set", QString::number(size.width()), QString::number(size.height())});
  }
  void CloseWindow() override { Run("swaymsg", {"kill"}); }
  void PutWindowAway() override { Run("swaymsg", {"[app_id=.*] move scratchpad"}); }
  void BringWindowBack() override { Run("swaymsg", {"[app_id=.*] scratchpad show"}); }

private:
  static void WriteConfiguration(const QString& path, double scale) {
    QFile file(path);
    EXPECT_TRUE(file.open(QFile::WriteOnly));
    file.write("output HEADLESS-1 resolution 1280x800 scale " + QByteArray::number(scale) +
               "\nxwayland disable\n"
               "for_window [app_id=\".*\"] floating enable, move position 20 20\n");
  }
  QByteArray Screenshot() override { return Run("grim", {"-t", "ppm", "-"}); }
};

} // namespace

Program::Program(const QStringList& arguments, const QProcessEnvironment& environment) {
  process_.setProcessEnvironment(environment);
  process_.setProcessChannelMode(QProcess::MergedChannels);
  process_.start(HALVENOR_PROGRAM, arguments);
  EXPECT_TRUE(process_.waitForStarted());
}

Program::~Program() {
  if (testing::Test::HasFailure()) {
    for (const std::string& line : Lines()) {
      if (!line.starts_with("[vrnd]") && !line.starts_with("[null]")) puts(line.c_str());
    }
  }
  EndProcess(process_);
}

std::vector<std::string> Program::Lines() {
  process_.waitForReadyRead(1);
  output_ += process_.readAll();
  std::vector<std::string> lines;
  for (const QByteArray& line : output_.split('\n'))
    lines.push_back(line.toStdString());
  lines.pop_back(); // not yet complete
  return lines;
}

bool Program::Has(const std::string& line) {
  return std::ranges::count(Lines(), line) > 0;
}

bool Program::HasStart(const std::string& start) {
  return Count(start) > 0;
}

std::string Program::Last(const std::string& start) {
  const std::vector<std::string> lines = Lines();
  const auto found = std::find_if(lines.rbegin(), lines.rend(),
                                  [&](const std::string& line) { return line.starts_with(start); });
  return found == lines.rend() ? std::string() : *found;
}

int Program::Count(const std::string& start) {
  return static_cast<int>(std::ranges::count_if(
      Lines(), [&](const std::string& line) { return line.starts_with(start); }));
}

void Program::Signal(int signal) {
  kill(static_cast<pid_t>(process_.processId()), signal);
}

double Program::Load(int milliseconds) {
  const auto ticks = [this] {
    QFile file(QStringLiteral("/proc/%1/stat").arg(process_.processId()));
    if (!file.open(QFile::ReadOnly)) return 0LL;
    const QList<QByteArray> fields = file.readAll().split(' ');
    return fields.value(13).toLongLong() + fields.value(14).toLongLong();
  };
  const auto before = ticks();
  QThread::msleep(static_cast<unsigned long>(milliseconds));
  return static_cast<double>(ticks() - before) * 1000.0 /
         static_cast<double>(sysconf(_SC_CLK_TCK)) / milliseconds;
}

int Program::ExitStatus() {
  if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(kToolMilliseconds))
    return -1;
  return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
}

DisplaySession::DisplaySession() : environment_(QProcessEnvironment::systemEnvironment()) {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_SESSION_TYPE", "QT_QPA_PLATFORM"}) {
    environment_.remove(name);
  }
  QDir(folder_.path()).mkdir("runtime");
  QFile::setPermissions(folder_.filePath("runtime"),
                        QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  environment_.insert("XDG_RUNTIME_DIR", folder_.filePath("runtime"));
  environment_.insert("XDG_CONFIG_HOME", folder_.filePath("config"));
  // Nobody's first start: that shows a card over the picture.
  QDir(folder_.path()).mkpath("config/halvenor");
  QFile settings(folder_.filePath("config/halvenor/halvenor.conf"));
  EXPECT_TRUE(settings.open(QFile::WriteOnly));
  settings.write("[window]\nkeysShown=true\n");
}

DisplaySession::~DisplaySession() {
  for (auto server = servers_.rbegin(); server != servers_.rend(); ++server)
    EndProcess(**server);
}

std::unique_ptr<DisplaySession> DisplaySession::StartX11(double scale) {
  return std::make_unique<X11Session>(scale);
}

std::unique_ptr<DisplaySession> DisplaySession::StartWayland(double scale) {
  return std::make_unique<WaylandSession>(scale);
}

void DisplaySession::Start(const QString& program, const QStringList& arguments,
                           const QProcessEnvironment& environment) {
  QProcess& server = *servers_.emplace_back(std::make_unique<QProcess>());
  server.setProcessEnvironment(environment);
  server.setStandardErrorFile(QProcess::nullDevice());
  server.start(program, arguments);
  EXPECT_TRUE(server.waitForStarted()) << program.toStdString() << " is not installed";
}

QByteArray DisplaySession::Run(const QString& program, const QStringList& arguments) {
  QProcess tool;
  tool.setProcessEnvironment(environment_);
  tool.start(program, arguments);
  EXPECT_TRUE(tool.waitForFinished(kToolMilliseconds) && tool.exitCode() == 0)
      << program.toStdString() << ' ' << arguments.join(' ').toStdString() << ": "
      << (tool.readAllStandardError() + tool.readAllStandardOutput()).toStdString();
  return tool.readAllStandardOutput();
}

QImage DisplaySession::Picture() {
  return QImage::fromData(Screenshot()).convertToFormat(QImage::Format_RGB32);
}

bool DisplaySession::PressUntil(const QString& keys, const std::function<bool()>& effect) {
  constexpr int kPresses = 5;
  for (int press = 0; press < kPresses; ++press) {
    Press(keys);
    if (Eventually(effect, 8)) return true;
  }
  return false;
}

} // namespace halvenor::test
