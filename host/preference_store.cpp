#include "host/preference_store.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

class FileDescriptor {
public:
  explicit FileDescriptor(int fd) : fd_(fd) {}
  ~FileDescriptor() {
    if (fd_ >= 0) close(fd_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  [[nodiscard]] int Get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }

private:
  const int fd_;
};

bool WriteAll(int fd, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(fd, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

// Fills `bytes` as far as the file reaches; the number of bytes read, or -1 with `errno`.
ssize_t ReadAll(int fd, std::span<std::byte> bytes) {
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    const ssize_t got = read(fd, bytes.data() + filled, bytes.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  return static_cast<ssize_t>(filled);
}

Status CopyOut(std::span<const std::byte> block, std::span<std::byte> buffer,
               std::size_t& sizeRead) {
  sizeRead = std::min(block.size(), buffer.size());
  std::copy_n(block.begin(), sizeRead, buffer.begin());
  return status::kOk;
}

} // namespace

FilePreferenceStore::FilePreferenceStore(fs::path folder) : folder_(std::move(folder)) {}

fs::path FilePreferenceStore::DefaultFolder() {
  const auto from = [](const char* variable) {
    const char* const value = std::getenv(variable);
    return fs::path(value ? value : "");
  };
  fs::path base = from("XDG_CONFIG_HOME");
  if (!base.is_absolute()) base = from("HOME") / ".config";
  return base / "halvenor/preferences";
}

fs::path FilePreferenceStore::FileOf(std::string_view plugin) const {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_ ";
  constexpr char kHex[] = "0123456789ABCDEF";
  std::string name;
  for (const char character : plugin) {
    if (kPlain.find(character) != kPlain.npos) {
      name += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      name += {'%', kHex[byte >> 4], kHex[byte & 15]};
    }
  }
  return folder_ / (name + ".block");
}

Status FilePreferenceStore::Read(std::string_view plugin, std::span<std::byte> buffer,
                                 std::size_t& sizeRead) {
  sizeRead = 0;
  const FileDescriptor file(open(FileOf(plugin).c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) return errno == ENOENT ? status::kOk : -errno;
  // Read aside first: a failure half-way must leave the plug-in's buffer as it was.
  std::vector<std::byte> block(buffer.size());
  const ssize_t size = ReadAll(file.Get(), block);
  if (size < 0) return -errno;
  return CopyOut(std::span(block).first(static_cast<std::size_t>(size)), buffer, sizeRead);
}

Status FilePreferenceStore::Write(std::string_view plugin, std::span<const std::byte> block) {
  std::error_code failed;
  fs::create_directories(folder_, failed);
  if (failed) return -failed.value();
  const FileDescriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return -errno;
  // One writer at a time, so that the temporary file can have a fixed name and a killed writer
  // leaves at most one behind, which the next write takes over.
  while (flock(folder.Get(), LOCK_EX) != 0) {
    if (errno != EINTR) break; // a file system without locks: go on without
  }

  const fs::path target = FileOf(plugin);
  const fs::path temporary = target.string() + ".new";
  Status result = status::kOk;
  {
    const FileDescriptor file(
        open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!file) return -errno;
    if (!WriteAll(file.Get(), block) || fsync(file.Get()) != 0) result = -errno;
  }
  if (result == status::kOk && rename(temporary.c_str(), target.c_str()) != 0) result = -errno;
  if (result != status::kOk) {
    unlink(temporary.c_str());
    return result;
  }
  return fsync(folder.Get()) == 0 ? status::kOk : -errno;
}

Status MemoryPreferenceStore::Read(std::string_view plugin, std::span<std::byte> buffer,
                                   std::size_t& sizeRead) {
  const auto found = blocks_.find(plugin);
  if (found != blocks_.end()) return CopyOut(found->second, buffer, sizeRead);
  sizeRead = 0;
  return status::kOk;
}

Status MemoryPreferenceStore::Write(std::string_view plugin, std::span<const std::byte> block) {
  blocks_.insert_or_assign(std::string(plugin), std::vector(block.begin(), block.end()));
  return status::kOk;
}

} // namespace halvenor
