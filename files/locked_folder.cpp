#include "files/locked_folder.h"

#include "files/printable.h"
#include "files/translated.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPresetKind = "preset"; // of temporary files
constexpr char kRemoved[] = "removed";
constexpr std::size_t kFewFiles = 16; // up to here each is synced by itself
constexpr auto kPatience = std::chrono::seconds(5);
constexpr auto kPause = std::chrono::milliseconds(20);

char AsciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

int Failed(bool failed) {
  return failed ? errno : 0;
}

// Makes what is missing of `path`; new folders are private.
int MakeFolders(const fs::path& path) {
  constexpr mode_t kPrivate = 0700;
  if (mkdir(path.c_str(), kPrivate) == 0) return 0;
  const int failed = errno;
  std::error_code none;
  if (fs::is_directory(path, none)) return 0;
  if (failed == EEXIST) return ENOTDIR;
  const fs::path parent = path.parent_path();
  if (failed != ENOENT || parent.empty() || parent == path) return failed;
  if (const int above = MakeFolders(parent)) return above;
  // Not once more from the start: some file systems have no folders to make, and always say ENOENT.
  return mkdir(path.c_str(), kPrivate) == 0 || fs::is_directory(path, none) ? 0 : failed;
}

} // namespace

std::vector<std::string> NamesIn(int folder) {
  std::vector<std::string> names;
  const int copy = openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const listing = copy < 0 ? nullptr : fdopendir(copy);
  if (!listing) return names;
  while (const dirent* const entry = readdir(listing))
    names.emplace_back(entry->d_name);
  closedir(listing);
  return names;
}

std::unique_ptr<LockedFolder> LockedFolder::Open(const fs::path& path, std::string& problem) {
  const auto fail = [&](const std::string& reason) {
    problem = Filled(Translated("halvenor::Files", "cannot write to %1: %2"),
                     {Printable(path.string()), reason});
    return nullptr;
  };
  if (const int failed = MakeFolders(path)) return fail(ErrorText(failed));
  OwnedDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return fail(ErrorText(errno));
  std::unique_ptr<LockedFolder> locked(new LockedFolder(std::move(folder)));
  if (!locked->Lock())
    return fail(Translated("halvenor::Files", "another program is busy with it"));
  return locked;
}

bool LockedFolder::Lock() {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (flock(folder_.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return true; // a file system without locks
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(kPause);
  }
  // Files of writers that were killed while they held the lock. They reported no success.
  TemporaryFile::Sweep(folder_.Get(), kPresetKind);
  return true;
}

std::set<std::string> LockedFolder::Names() const {
  std::set<std::string> names;
  for (std::string name : NamesIn(folder_.Get())) {
    std::transform(name.begin(), name.end(), name.begin(), AsciiLower);
    names.insert(std::move(name));
  }
  return names;
}

FileBytes LockedFolder::Read(const std::string& name) const {
  return ReadFileBytes(folder_.Get(), name, Links::Refuse);
}

int LockedFolder::Stage(std::string_view bytes, std::size_t& staged) {
  staged = staged_.size();
  constexpr mode_t kUsual = 0666;
  TemporaryFile file;
  if (const int failed = TemporaryFile::Create(folder_.Get(), kPresetKind, kUsual, file))
    return failed;
  if (const int failed = file.Write(std::as_bytes(std::span(bytes)))) return failed;
  const int failed = staged < kFewFiles ? file.Sync() : 0;
  // Closed, since there may be more of them than a process may hold open.
  if (const int unclosed = file.Close(); failed != 0 || unclosed != 0)
    return failed != 0 ? failed : unclosed;
  staged_.push_back(std::move(file));
  return 0;
}

int LockedFolder::Settle() {
  return staged_.size() > kFewFiles ? Failed(syncfs(folder_.Get()) != 0) : 0;
}

int LockedFolder::NameNew(std::size_t staged, const std::string& name) {
  return staged_[staged].NameNew(name);
}

int LockedFolder::NameOver(std::size_t staged, const std::string& name) {
  return staged_[staged].NameOver(name);
}

int LockedFolder::SetAside(const std::string& name, std::string& where) {
  constexpr mode_t kPrivate = 0700;
  if (mkdirat(folder_.Get(), kRemoved, kPrivate) != 0 && errno != EEXIST) return errno;
  const fs::path file(name);
  for (int number = 1;; ++number) {
    where = std::string(kRemoved) + "/" + file.stem().string();
    if (number > 1) where.append("-").append(std::to_string(number));
    where += file.extension().string();
    const int failed = Move(name, where);
    if (failed != EEXIST) return failed;
  }
}

int LockedFolder::Move(const std::string& from, const std::string& to) {
  return MoveWithoutReplacing(folder_.Get(), from, to);
}

void LockedFolder::Delete(const std::string& name) {
  unlinkat(folder_.Get(), name.c_str(), 0);
}

void LockedFolder::Sync() {
  fsync(folder_.Get());
}

} // namespace halvenor
