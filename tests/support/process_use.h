// What a process holds, for tests of what must not grow.
#pragma once

#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define HALVENOR_SANITIZED
#include <sanitizer/allocator_interface.h>
#endif
#endif

namespace halvenor {

/// How many files this process has open.
inline std::ptrdiff_t OpenFiles() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// Kilobytes in use. Sanitizers keep what is freed, but know what is not.
inline long MemoryInUse() {
#ifdef HALVENOR_SANITIZED
  return static_cast<long>(__sanitizer_get_current_allocated_bytes() / 1024);
#else
  malloc_trim(0);
  long pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * sysconf(_SC_PAGESIZE) / 1024;
#endif
}

} // namespace halvenor
