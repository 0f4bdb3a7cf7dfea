// Counts heap allocations, to show that something makes none.
#pragma once

#include <cstdint>

namespace halvenor::stand_ins {

/// How many times the calling thread has used `operator new` since its start. Programs that link
/// `halvenor_allocation_counter` have their `operator new` replaced by a counting one, but for
/// those built with the thread sanitizer: there it is always 0.
[[nodiscard]] std::uint64_t AllocationsOfThisThread();

} // namespace halvenor::stand_ins
