#include "tests/stand_ins/allocation_counter.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace halvenor::stand_ins {
namespace {

thread_local std::uint64_t allocations = 0;

} // namespace

std::uint64_t AllocationsOfThisThread() {
  return allocations;
}

} // namespace halvenor::stand_ins

// The thread sanitizer's runtime has these functions itself.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define HALVENOR_OWN_NEW 0
#endif
#elif defined(__SANITIZE_THREAD__)
#define HALVENOR_OWN_NEW 0
#endif
#ifndef HALVENOR_OWN_NEW
#define HALVENOR_OWN_NEW 1
#endif

#if HALVENOR_OWN_NEW
// The other forms of new and delete come down to these.
void* operator new(std::size_t size) {
  ++halvenor::stand_ins::allocations;
  if (void* block = std::malloc(std::max(size, std::size_t{1}))) return block;
  throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}
#endif
