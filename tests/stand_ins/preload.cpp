// The stand-ins as a library to be loaded ahead of the real ones (LD_PRELOAD): a whole program then
// runs without graphics, in silence, and fails when its end finds a misuse.
#include "tests/stand_ins/call_log.h"

#include <cstdio>
#include <unistd.h>

namespace {

constexpr int kMisuseStatus = 66;

struct Preloaded {
  Preloaded() { halvenor::stand_ins::SetSilent(true); }
  ~Preloaded() {
    const auto misuses = halvenor::stand_ins::Misuses();
    for (const std::string& line : misuses)
      std::fprintf(stderr, "misuse: %s\n", line.c_str());
    if (misuses.empty()) return;
    std::fflush(nullptr);
    _exit(kMisuseStatus);
  }
} const preloaded;

} // namespace
