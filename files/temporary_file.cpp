#include "files/temporary_file.h"

#include "files/locked_folder.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace halvenor {
namespace {

constexpr std::string_view kEnd = ".new";

std::string Begin(std::string_view kind) {
  return ".halvenor-" + std::string(kind) + "-";
}

// Every temporary name of this process and its folder. Never destroyed: a process may end at any
// time.
struct Unnamed {
  std::timed_mutex mutex;
  std::map<std::string, int> folders;
};
Unnamed& TheUnnamed() {
  static Unnamed& unnamed = *new Unnamed;
  return unnamed;
}

int Result(bool good) {
  return good ? 0 : errno;
}

} // namespace

int TemporaryFile::Create(int folder, std::string_view kind, mode_t mode, TemporaryFile& made) {
  static std::atomic<unsigned> number{0};
  for (;;) {
    const std::string name =
        Begin(kind) + std::to_string(getpid()) + "-" + std::to_string(++number) + std::string(kEnd);
    OwnedDescriptor file(
        openat(folder, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!file && errno == EEXIST) continue;
    if (!file) return errno;
    flock(file.Get(), LOCK_EX | LOCK_NB); // a file system without locks: it is not swept there
    struct stat state {};
    const bool isSwept = fstat(file.Get(), &state) == 0 && state.st_nlink == 0;
    if (isSwept) continue; // before it was locked
    made = TemporaryFile();
    made.folder_ = folder;
    made.file_ = std::move(file);
    made.name_ = name;
    const std::scoped_lock lock(TheUnnamed().mutex);
    TheUnnamed().folders[name] = folder;
    return 0;
  }
}

TemporaryFile::~TemporaryFile() {
  if (name_.empty()) return;
  unlinkat(folder_, name_.c_str(), 0);
  Named();
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : folder_(other.folder_), file_(std::move(other.file_)),
      name_(std::exchange(other.name_, std::string())) {}

TemporaryFile& TemporaryFile::operator=(TemporaryFile&& other) noexcept {
  std::swap(folder_, other.folder_);
  std::swap(file_, other.file_);
  std::swap(name_, other.name_);
  return *this;
}

void TemporaryFile::Named() {
  const std::scoped_lock lock(TheUnnamed().mutex);
  TheUnnamed().folders.erase(name_);
  name_.clear();
}

int TemporaryFile::Write(std::span<const std::byte> bytes, Stopped stopped) const {
  return WriteAll(file_.Get(), bytes, stopped);
}

int TemporaryFile::Sync() const {
  return Result(fsync(file_.Get()) == 0);
}

int TemporaryFile::Close() {
  return Result(file_.Close());
}

int TemporaryFile::NameOver(const std::string& name) {
  if (renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0) return errno;
  Named();
  return 0;
}

int TemporaryFile::NameNew(const std::string& name) {
  if (const int failed = MoveWithoutReplacing(folder_, name_, name)) return failed;
  Named();
  return 0;
}

void TemporaryFile::Sweep(int folder, std::string_view kind) {
  const std::string begin = Begin(kind);
  for (const std::string& name : NamesIn(folder)) {
    if (!name.starts_with(begin) || !name.ends_with(kEnd)) continue;
    const OwnedDescriptor file(
        openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file && flock(file.Get(), LOCK_EX | LOCK_NB) == 0) unlinkat(folder, name.c_str(), 0);
  }
}

void TemporaryFile::RemoveAll() {
  const std::unique_lock lock(TheUnnamed().mutex, std::chrono::milliseconds(100));
  if (!lock) return;
  for (const auto& [name, folder] : TheUnnamed().folders)
    unlinkat(folder, name.c_str(), 0);
}

int WriteAll(int descriptor, std::span<const std::byte> bytes, TemporaryFile::Stopped stopped) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno != EINTR) return errno;
    if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    // A signal also cuts a write short that has begun.
    if (!bytes.empty() && stopped && stopped()) return EINTR;
  }
  return 0;
}

int MoveWithoutReplacing(int folder, const std::string& from, const std::string& to) {
  if (renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // A file system that only knows links.
  if (linkat(folder, from.c_str(), folder, to.c_str(), 0) != 0) return errno;
  return Result(unlinkat(folder, from.c_str(), 0) == 0);
}

} // namespace halvenor
