#include "tests/support/sound_servers.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace halvenor {

namespace fs = std::filesystem;

TestSoundServer::TestSoundServer(Kind kind) : kind_(kind) {
  fs::permissions(Folder(), fs::perms::owner_all); // as programs ask of a runtime folder
  setenv("XDG_RUNTIME_DIR", Folder().c_str(), 1);
  setenv("HOME", Folder().c_str(), 1);
  setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + Folder() + "/bus").c_str(), 1);
  setenv("PULSE_LOG", "0", 1);
  for (const char* variable : {"DISPLAY", "PULSE_SERVER", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
    unsetenv(variable);
}

TestSoundServer::~TestSoundServer() {
  Kill();
}

void TestSoundServer::Run(std::vector<std::string> command) {
  command.insert(command.begin(), {"sh", "-c", "exec \"$@\" >>" + Folder() + "/log 2>&1", "sh"});
  processes_.push_back(std::make_unique<ServerProcess>(std::move(command), -1));
}

bool TestSoundServer::Start() {
  if (kind_ == Kind::PulseAudio) {
    Run({"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
         "module-native-protocol-unix", "-L", "module-null-source source_name=mic"});
  } else {
    // pipewire-pulse gives up when a client makes this folder at the same time.
    fs::create_directory(Folder() + "/pulse");
    fs::permissions(Folder() + "/pulse", fs::perms::owner_all);
    Run({"dbus-daemon", "--session", "--nofork", "--address=unix:path=" + Folder() + "/bus"});
    if (!Eventually([&] { return fs::exists(Folder() + "/bus"); })) return false;
    Run({"pipewire"});
    if (!Eventually([&] { return fs::exists(Folder() + "/pipewire-0"); })) return false;
    Run({"wireplumber"});
    Run({"pipewire-pulse"});
  }
  if (!Eventually([&] { return Control("info"); }) || !MakeOutput("alpha") || !MakeOutput("beta"))
    return false;
  if (kind_ == Kind::PipeWire &&
      !Control("load-module module-null-sink media.class=Audio/Source/Virtual sink_name=mic"))
    return false;
  // New devices are known to one part of the server before they are to the other.
  return Eventually([&] {
    return Control("set-default-source mic") && Control("set-default-sink alpha") &&
           Ask("get-default-sink") == "alpha\n";
  });
}

void TestSoundServer::Kill() {
  while (!processes_.empty())
    processes_.pop_back();
  std::error_code ignored;
  for (const char* left : {"bus", "pipewire-0", "pipewire-0.lock", "pulse"})
    fs::remove_all(folder_ / left, ignored);
}

void TestSoundServer::Signal(int signal) const {
  for (const auto& process : processes_)
    process->Signal(signal);
}

bool TestSoundServer::Control(const std::string& arguments) const {
  const std::string command = "timeout 10 pactl " + arguments + " >/dev/null 2>&1";
  return std::system(command.c_str()) == 0; // NOLINT(concurrency-mt-unsafe)
}

std::string TestSoundServer::Ask(const std::string& arguments) const {
  std::string said;
  FILE* answer = popen(("timeout 10 pactl " + arguments + " 2>/dev/null").c_str(), "r");
  std::array<char, 4096> part{};
  while (std::fgets(part.data(), part.size(), answer) != nullptr)
    said += part.data();
  pclose(answer);
  return said;
}

bool TestSoundServer::MakeOutput(const std::string& name) {
  return Control("load-module module-null-sink sink_name=" + name +
                 " sink_properties=device.description=Loud_" + name) &&
         Eventually([&] { return Ask("list short sinks").find(name) != std::string::npos; });
}

bool TestSoundServer::RemoveOutput(const std::string& name) {
  const std::string modules = Ask("list short modules");
  const std::size_t found = modules.find("sink_name=" + name);
  if (found == std::string::npos) return false;
  const std::size_t line = modules.rfind('\n', found) + 1; // the first line's start is 0
  return Control("unload-module " + modules.substr(line, modules.find('\t', line) - line));
}

} // namespace halvenor
