// A disk that is full after a few bytes of every file.
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace halvenor {

/// As long as it lives no file of this process grows beyond `bytes`.
class SmallDisk {
public:
  explicit SmallDisk(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
  }
  ~SmallDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

private:
  rlimit before_{};
  void (*handler_)(int);
};

} // namespace halvenor
