// Reading files that may be anything.
#pragma once

#include <optional>
#include <string>

namespace halvenor {

struct FileBytes {
  std::optional<std::string> bytes;
  std::string reason; ///< why there are none; empty when there is no such file
};

enum class Links { Follow, Refuse };

/// The whole of an ordinary file of at most 16 MB. Never waits, as for a pipe. `folder` is a
/// descriptor or AT_FDCWD.
FileBytes ReadFileBytes(int folder, const std::string& name, Links links);

/// What an `errno` value means, for a person.
std::string ErrorText(int number);

/// An open descriptor, closed by whoever holds it last.
class OwnedDescriptor {
public:
  explicit OwnedDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~OwnedDescriptor();
  OwnedDescriptor(OwnedDescriptor&& other) noexcept;
  OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept;
  [[nodiscard]] int Get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

private:
  int descriptor_;
};

} // namespace halvenor
