#include "config/file_bytes.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace halvenor {
namespace {

constexpr off_t kLargestFile = off_t{16} << 20; // bytes

std::string WhyNotOrdinary(const struct stat& file) {
  if (S_ISDIR(file.st_mode)) return "is a folder";
  if (S_ISLNK(file.st_mode)) return "is a link";
  if (!S_ISREG(file.st_mode)) return "is no ordinary file";
  if (file.st_size > kLargestFile) return "is larger than 16 MB";
  return "";
}

} // namespace

std::string ErrorText(int number) {
  return std::generic_category().message(number);
}

FileBytes ReadFileBytes(int folder, const std::string& name, Links links) {
  const bool follow = links == Links::Follow;
  struct stat file {};
  if (fstatat(folder, name.c_str(), &file, follow ? 0 : AT_SYMLINK_NOFOLLOW) != 0)
    return {std::nullopt, errno == ENOENT ? "" : ErrorText(errno)};
  if (std::string reason = WhyNotOrdinary(file); !reason.empty()) return {std::nullopt, reason};

  const OwnedDescriptor input(
      openat(folder, name.c_str(),
             O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (follow ? 0 : O_NOFOLLOW)));
  if (!input || fstat(input.Get(), &file) != 0) return {std::nullopt, ErrorText(errno)};
  if (std::string reason = WhyNotOrdinary(file); !reason.empty()) return {std::nullopt, reason};

  // As long as it was a moment ago: what is appended meanwhile is not waited for.
  std::string bytes(static_cast<std::size_t>(file.st_size), '\0');
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t got = read(input.Get(), bytes.data() + filled, bytes.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return {std::nullopt, ErrorText(errno)};
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bytes.resize(filled);
  return {std::move(bytes), ""};
}

OwnedDescriptor::~OwnedDescriptor() {
  if (descriptor_ >= 0) close(descriptor_);
}

OwnedDescriptor::OwnedDescriptor(OwnedDescriptor&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

OwnedDescriptor& OwnedDescriptor::operator=(OwnedDescriptor&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

} // namespace halvenor
