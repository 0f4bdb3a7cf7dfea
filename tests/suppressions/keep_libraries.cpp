// Linked into suites and programs under AddressSanitizer: libraries stay loaded, so that what they
// keep is still reachable when the leak check runs, and what they leak has a name.
#include <dlfcn.h>

extern "C" __attribute__((visibility("default"))) int dlclose(void* /*handle*/) noexcept {
  return 0;
}
