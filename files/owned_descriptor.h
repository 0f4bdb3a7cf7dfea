#pragma once

#include <unistd.h>
#include <utility>

namespace halvenor {

/// An open descriptor, closed by whoever holds it last; -1 stands for none.
class OwnedDescriptor {
public:
  explicit OwnedDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~OwnedDescriptor() { Close(); }
  OwnedDescriptor(OwnedDescriptor&& other) noexcept : descriptor_(other.Release()) {}
  OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  [[nodiscard]] int Get() const { return descriptor_; }
  [[nodiscard]] int Release() { return std::exchange(descriptor_, -1); }
  /// False with `errno` when the file system reports only now that something was not written.
  bool Close() { return descriptor_ < 0 || close(Release()) == 0; }
  explicit operator bool() const { return descriptor_ >= 0; }

private:
  int descriptor_;
};

} // namespace halvenor
