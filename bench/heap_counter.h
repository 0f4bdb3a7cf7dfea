#pragma once

#include <cstdint>

namespace halvenor::bench {

/// How many blocks of memory the calling thread has asked the C library for, whoever in the process
/// asked on it: `operator new` comes down to the same.
[[nodiscard]] std::uint64_t BlocksAskedFor();

} // namespace halvenor::bench
