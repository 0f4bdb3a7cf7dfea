// Runs of the real halvenor-render in a folder of their own.
#pragma once

#include "tests/support/sound_files.h"

#include <filesystem>
#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace halvenor {

using Arguments = std::vector<std::string>;

struct RunResult {
  int exitCode = -1; ///< 1000 + the signal that killed it
  std::string output;
  std::string errors;
};

class ProgramRun {
public:
  /// The program's current folder, and what it finds there at first.
  [[nodiscard]] const SoundFolder& Folder() const { return folder_; }
  [[nodiscard]] std::string Path(const std::string& name) const { return folder_.Path(name); }

  std::map<std::string, std::string> environment; ///< added to the test's own
  unsigned long maxFileBytes = 0;                 ///< 0: as many as you like

  [[nodiscard]] RunResult Run(const Arguments& arguments) const;
  /// Starts it and comes back; `Wait` collects it.
  [[nodiscard]] pid_t Start(const Arguments& arguments) const;
  [[nodiscard]] RunResult Wait(pid_t process) const;

  /// The names in the folder, hidden ones included, sorted.
  [[nodiscard]] std::vector<std::string> Names() const;
  [[nodiscard]] std::string Read(const std::string& name) const { return ReadText(Path(name)); }
  /// What a program that still runs has said so far.
  [[nodiscard]] std::string Errors() const { return ReadText(reports_.Path("errors")); }

private:
  SoundFolder folder_;
  SoundFolder reports_; ///< what the program prints
};

} // namespace halvenor
