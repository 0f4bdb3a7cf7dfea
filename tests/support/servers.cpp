#include "tests/support/servers.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace halvenor {
namespace {

constexpr std::chrono::seconds kPatience{20};

std::string ReadLine(int file) {
  std::string line;
  pollfd waiting{file, POLLIN, 0};
  char character = 0;
  while (poll(&waiting, 1, 1000 * static_cast<int>(kPatience.count())) == 1 &&
         read(file, &character, 1) == 1 && character != '\n')
    line += character;
  return line;
}

} // namespace

ServerProcess::ServerProcess(std::vector<std::string> command, int handed,
                             std::vector<std::string> environment) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (std::string& word : command)
    arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_ = fork();
  if (pid_ != 0) return;
  prctl(PR_SET_PDEATHSIG, SIGKILL); // a suite that crashes leaves nothing behind
  for (std::string& variable : environment)
    putenv(variable.data());
  if (handed >= 0) dup2(handed, 3);
  execvp(arguments[0], arguments.data());
  std::perror(arguments[0]);
  _exit(127);
}

bool ServerProcess::IsRunning() {
  if (pid_ > 0 && waitpid(pid_, nullptr, WNOHANG) == pid_) pid_ = -1;
  return pid_ > 0;
}

void ServerProcess::Signal(int signal) const {
  if (pid_ > 0) kill(pid_, signal);
}

void ServerProcess::Kill() {
  if (pid_ <= 0) return;
  Signal(SIGKILL);
  waitpid(pid_, nullptr, 0);
  pid_ = -1;
}

XServer::XServer() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) return;
  process_ = std::make_unique<ServerProcess>(
      std::vector<std::string>{"Xvfb", "-displayfd", "3", "-screen", "0", "640x480x24", "-nolisten",
                               "tcp", "-noreset"},
      ends[1]);
  close(ends[1]);
  if (const std::string number = ReadLine(ends[0]); !number.empty()) name_ = ":" + number;
  close(ends[0]);
}

WaylandServer::WaylandServer(const XServer& screen) {
  const std::string folder = folder_.Path();
  process_ = std::make_unique<ServerProcess>(
      std::vector<std::string>{"weston", "--backend=x11-backend.so", "--use-pixman",
                               "--shell=kiosk-shell.so", "--width=320", "--height=240",
                               "--socket=wayland-test", "--no-config", "--log=" + folder + "/log"},
      -1, std::vector<std::string>{"XDG_RUNTIME_DIR=" + folder, "DISPLAY=" + screen.DisplayName()});
  const auto socket = folder_ / "wayland-test";
  if (Eventually([&] { return std::filesystem::exists(socket) || !process_->IsRunning(); }) &&
      process_->IsRunning())
    name_ = socket;
}

bool Eventually(const std::function<bool()>& condition, int seconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

} // namespace halvenor
