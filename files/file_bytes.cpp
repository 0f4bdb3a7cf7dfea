#include "files/file_bytes.h"

#include "files/translated.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace halvenor {
namespace {

int WhyNotRegular(const struct stat& file, std::uint64_t limit) {
  if (S_ISDIR(file.st_mode)) return EISDIR;
  if (S_ISLNK(file.st_mode)) return ELOOP;
  if (!S_ISREG(file.st_mode)) return EINVAL;
  return static_cast<std::uint64_t>(file.st_size) > limit ? EFBIG : 0;
}

} // namespace

std::string ErrorText(int number) {
  return std::generic_category().message(number);
}

std::string OpenedFile::Reason() const {
  switch (error) {
  case 0:
    return "";
  case EISDIR:
    return Translated("halvenor::Files", "is a folder");
  case ELOOP:
    return Translated("halvenor::Files", "is a link");
  case EINVAL:
    return Translated("halvenor::Files", "is not a regular file");
  case EFBIG:
    return Filled(Translated("halvenor::Files", "is larger than %1 MB"),
                  {std::to_string(limit >> 20U)});
  default:
    return ErrorText(error);
  }
}

OpenedFile OpenRegularFile(int folder, const std::string& name, Links links, std::uint64_t limit) {
  const bool follow = links == Links::Follow;
  OpenedFile opened;
  opened.limit = limit;
  // Looked at before, since opening a device may start something, and after, since it may have been
  // replaced meanwhile.
  struct stat file {};
  if (fstatat(folder, name.c_str(), &file, follow ? 0 : AT_SYMLINK_NOFOLLOW) != 0)
    opened.error = errno;
  else
    opened.error = WhyNotRegular(file, limit);
  if (opened.error != 0) return opened;
  constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  OwnedDescriptor descriptor(openat(folder, name.c_str(), follow ? kFlags : kFlags | O_NOFOLLOW));
  if (!descriptor || fstat(descriptor.Get(), &file) != 0)
    opened.error = errno;
  else
    opened.error = WhyNotRegular(file, limit);
  if (opened.error != 0) return opened;
  opened.size = static_cast<std::uint64_t>(file.st_size);
  opened.descriptor = std::move(descriptor);
  return opened;
}

std::int64_t ReadAt(int descriptor, std::uint64_t position, std::span<std::byte> bytes) {
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t got = pread(descriptor, bytes.data() + filled, bytes.size() - filled,
                              static_cast<off_t>(position + filled));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  return static_cast<std::int64_t>(filled);
}

FileBytes ReadFileBytes(int folder, const std::string& name, Links links, std::uint64_t limit) {
  const OpenedFile file = OpenRegularFile(folder, name, links, limit);
  if (!file) return {std::nullopt, file.error == ENOENT ? "" : file.Reason()};
  // As long as it was a moment ago: what is appended meanwhile is not waited for.
  std::string bytes(static_cast<std::size_t>(file.size), '\0');
  const std::int64_t size =
      ReadAt(file.descriptor.Get(), 0, std::as_writable_bytes(std::span(bytes)));
  if (size < 0) return {std::nullopt, ErrorText(errno)};
  bytes.resize(static_cast<std::size_t>(size));
  return {std::move(bytes), ""};
}

} // namespace halvenor
