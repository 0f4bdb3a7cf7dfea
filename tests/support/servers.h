// Display servers of a suite's own.
#pragma once

#include "tests/support/scratch_folder.h"

#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace halvenor {

/// A child process, ended when this goes. Its standard output and error are this process's.
class ServerProcess {
public:
  /// Starts `command` (found in $PATH) with `handed`, unless -1, as file descriptor 3, and the
  /// variables of `environment` ("NAME=value") added.
  ServerProcess(std::vector<std::string> command, int handed,
                std::vector<std::string> environment = {});
  ~ServerProcess() { Kill(); }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  [[nodiscard]] bool IsRunning();
  void Kill();
  void Signal(int signal) const;

private:
  int pid_ = -1;
};

/// Xvfb on a free display number.
class XServer {
public:
  XServer();
  [[nodiscard]] const std::string& DisplayName() const { return name_; }

private:
  std::unique_ptr<ServerProcess> process_;
  std::string name_; ///< empty when it did not start
};

/// weston in a window of Xvfb, 320x240, where every Wayland window is in the middle of black. Its
/// socket lies in a runtime folder of its own.
class WaylandServer {
public:
  explicit WaylandServer(const XServer& screen);
  ~WaylandServer() { process_.reset(); }
  /// Name for wl_display_connect.
  [[nodiscard]] const std::string& SocketName() const { return name_; }
  void Freeze() const { process_->Signal(SIGSTOP); }
  void Thaw() const { process_->Signal(SIGCONT); }

private:
  ScratchFolder folder_;
  std::unique_ptr<ServerProcess> process_;
  std::string name_; ///< empty when it did not start
};

/// Whether `condition` comes true within `seconds`; it is asked again and again.
bool Eventually(const std::function<bool()>& condition, int seconds = 30);

} // namespace halvenor
