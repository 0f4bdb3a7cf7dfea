// Linked into suites and programs under AddressSanitizer: what libraries keep for ever stays
// reachable when the leak check runs.
#include <cstddef>
#include <dlfcn.h>
#include <iterator>
#include <sanitizer/allocator_interface.h>

// Libraries stay loaded, and what they leak has a name.
extern "C" __attribute__((visibility("default"))) int dlclose(void* /*handle*/) noexcept {
  return 0;
}

namespace {

// GLib gives up its first table of names, of this size, when it needs a larger one, since others
// may still read it. It is made while libraries are being loaded, where a stack tells no function.
constexpr std::size_t kNamesInTable = 2048;

// Where the check finds them; volatile, since nothing here reads them.
const volatile void* volatile tables[4];
std::size_t tableCount = 0;
volatile bool isLoading = true; // volatile: else its end would be taken for its beginning

__attribute__((no_sanitize("address", "undefined"))) void KeepTable(const volatile void* block,
                                                                    std::size_t size) {
  if (isLoading && size == kNamesInTable * sizeof(char*) && tableCount < std::size(tables))
    tables[tableCount++] = block;
}

__attribute__((no_sanitize("address", "undefined"))) void WatchLoading() {
  __sanitizer_install_malloc_and_free_hooks(&KeepTable, [](const volatile void*) {});
}

// Before the libraries' own initialization, and after it.
__attribute__((section(".preinit_array"), used)) void (*const watch)() = &WatchLoading;
__attribute__((constructor)) void EndLoading() {
  isLoading = false;
}

} // namespace
