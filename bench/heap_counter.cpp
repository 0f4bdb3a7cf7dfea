// Stands before the C library's allocation functions in the whole process.
#include "bench/heap_counter.h"

#include <cerrno>
#include <cstddef>

namespace halvenor::bench {
namespace {

constinit thread_local std::uint64_t blocks = 0;

} // namespace

std::uint64_t BlocksAskedFor() {
  return blocks;
}

} // namespace halvenor::bench

using halvenor::bench::blocks;

extern "C" {

// The GNU C library's own names for them.
// NOLINTBEGIN(bugprone-reserved-identifier)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)

[[gnu::visibility("default")]] void* malloc(std::size_t size) {
  ++blocks;
  return __libc_malloc(size);
}

[[gnu::visibility("default")]] void* calloc(std::size_t count, std::size_t size) {
  ++blocks;
  return __libc_calloc(count, size);
}

[[gnu::visibility("default")]] void* realloc(void* block, std::size_t size) {
  ++blocks;
  return __libc_realloc(block, size);
}

[[gnu::visibility("default")]] void* aligned_alloc(std::size_t alignment, std::size_t size) {
  ++blocks;
  return __libc_memalign(alignment, size);
}

[[gnu::visibility("default")]] int posix_memalign(void** block, std::size_t alignment,
                                                  std::size_t size) {
  ++blocks;
  *block = __libc_memalign(alignment, size);
  return *block != nullptr ? 0 : ENOMEM;
}

} // extern "C"
