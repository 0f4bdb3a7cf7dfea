#include "tests/render/program_run.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

void Redirect(const std::string& path, int descriptor) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(file, descriptor);
  close(file);
}

} // namespace

pid_t ProgramRun::Start(const Arguments& arguments) const {
  fs::remove(reports_.Path("errors")); // those of a run before
  const pid_t process = fork();
  if (process != 0) return process;
  std::vector<char*> raw{const_cast<char*>("halvenor-render")};
  for (const std::string& argument : arguments)
    raw.push_back(const_cast<char*>(argument.c_str()));
  raw.push_back(nullptr);
  for (const auto& [name, value] : environment)
    setenv(name.c_str(), value.c_str(), 1);
  Redirect(reports_.Path("output"), STDOUT_FILENO);
  Redirect(reports_.Path("errors"), STDERR_FILENO);
  if (maxFileBytes != 0) {
    const rlimit limit{maxFileBytes, maxFileBytes};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  if (chdir(folder_.Path("").c_str()) == 0) execv(RENDER_PROGRAM, raw.data());
  _exit(99);
}

RunResult ProgramRun::Wait(pid_t process) const {
  int ended = 0;
  waitpid(process, &ended, 0);
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : 1000 + WTERMSIG(ended),
          ReadText(reports_.Path("output")), Errors()};
}

RunResult ProgramRun::Run(const Arguments& arguments) const {
  return Wait(Start(arguments));
}

std::vector<std::string> ProgramRun::Names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder_.Path("")))
    names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

} // namespace halvenor
