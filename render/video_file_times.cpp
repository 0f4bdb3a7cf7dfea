#include "render/video_file_times.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace halvenor::render {
namespace {

constexpr std::string_view kContainers[] = {"moov", "trak", "mdia"};
// Boxes that hold two times after their version and flags.
constexpr std::string_view kTimed[] = {"mvhd", "tkhd", "mdhd"};

template <std::size_t count>
bool IsOneOf(std::string_view type, const std::string_view (&types)[count]) {
  return std::find(std::begin(types), std::end(types), type) != std::end(types);
}

std::uint64_t BigEndian(const std::uint8_t* bytes, int count) {
  std::uint64_t value = 0;
  for (int i = 0; i < count; ++i)
    value = value << 8 | bytes[i];
  return value;
}

bool ReadAt(int fd, off_t position, std::uint8_t* bytes, std::size_t count) {
  errno = EINVAL; // for a file that ends here
  return pread(fd, bytes, count, position) == static_cast<ssize_t>(count);
}

bool ClearTimesAt(int fd, off_t body) {
  std::uint8_t version = 0;
  if (!ReadAt(fd, body, &version, 1)) return false;
  static constexpr std::array<std::uint8_t, 16> kZeros{};
  const std::size_t size = version == 1 ? 16 : 8;
  return pwrite(fd, kZeros.data(), size, body + 4) == static_cast<ssize_t>(size);
}

// Walks the boxes between `begin` and `end`, into those that hold others.
bool ClearBetween(int fd, off_t begin, off_t end) {
  while (begin < end) {
    std::uint8_t header[16];
    if (!ReadAt(fd, begin, header, 8)) return false;
    std::uint64_t size = BigEndian(header, 4);
    off_t headerSize = 8;
    if (size == 1) {
      headerSize = 16;
      if (!ReadAt(fd, begin, header, 16)) return false;
      size = BigEndian(header + 8, 8);
    } else if (size == 0) {
      size = static_cast<std::uint64_t>(end - begin);
    }
    if (size < static_cast<std::uint64_t>(headerSize) ||
        size > static_cast<std::uint64_t>(end - begin)) {
      errno = EINVAL;
      return false;
    }
    const off_t next = begin + static_cast<off_t>(size);
    const std::string_view type(reinterpret_cast<const char*>(header) + 4, 4);
    if (IsOneOf(type, kContainers) && !ClearBetween(fd, begin + headerSize, next)) return false;
    if (IsOneOf(type, kTimed) && !ClearTimesAt(fd, begin + headerSize)) return false;
    begin = next;
  }
  return true;
}

} // namespace

bool ClearMp4Times(int fd) {
  struct stat file {};
  return fstat(fd, &file) == 0 && ClearBetween(fd, 0, file.st_size);
}

} // namespace halvenor::render
