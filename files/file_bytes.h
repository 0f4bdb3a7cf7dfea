// Reading files that may be anything: the one way in which files are opened for reading.
#pragma once

#include "files/owned_descriptor.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace halvenor {

enum class Links { Follow, Refuse };

inline constexpr std::uint64_t kLargestSmallFile = std::uint64_t{16} << 20; ///< bytes
inline constexpr std::uint64_t kAnySize = ~std::uint64_t{0};

/// A regular file, open for reading; or why there is none.
struct OpenedFile {
  OwnedDescriptor descriptor;
  std::uint64_t size = 0;  ///< bytes
  std::uint64_t limit = 0; ///< bytes that were allowed
  int error = 0; ///< an `errno` value: EISDIR, ELOOP for a refused link, EFBIG, EINVAL for
                 ///< a pipe, a device or a socket, or what the system said
  [[nodiscard]] std::string Reason() const; ///< the end of "FILE: ..."; empty when `error` is 0
  explicit operator bool() const { return bool(descriptor); }
};

/// Opens a regular file of at most `limit` bytes. Never waits, as opening a pipe would. `folder` is
/// a descriptor or AT_FDCWD.
OpenedFile OpenRegularFile(int folder, const std::string& name, Links links, std::uint64_t limit);

struct FileBytes {
  std::optional<std::string> bytes;
  std::string reason; ///< why there are none; empty when there is no such file
};

/// The whole of a regular file.
FileBytes ReadFileBytes(int folder, const std::string& name, Links links,
                        std::uint64_t limit = kLargestSmallFile);

/// Fills `bytes` from `position` on as far as the file reaches. The number of bytes read, or -1
/// with `errno`.
std::int64_t ReadAt(int descriptor, std::uint64_t position, std::span<std::byte> bytes);

/// What an `errno` value means, for a person.
std::string ErrorText(int number);

} // namespace halvenor
