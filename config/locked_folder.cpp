#include "config/locked_folder.h"

#include "config/preset_names.h"

#include <glib.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kStagedBegin = ".halvenor-preset-";
constexpr std::string_view kStagedEnd = ".new";
constexpr char kRemoved[] = "removed";
constexpr std::size_t kFewFiles = 16; // up to here each is synced by itself
constexpr auto kPatience = std::chrono::seconds(5);
constexpr auto kPause = std::chrono::milliseconds(20);

int Failed(bool failed) {
  return failed ? errno : 0;
}

int WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
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
    problem = "cannot write to " + Printable(path.string()) + ": " + reason;
    return nullptr;
  };
  constexpr int kPrivate = 0700;
  if (g_mkdir_with_parents(path.c_str(), kPrivate) != 0) return fail(ErrorText(errno));
  OwnedDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return fail(ErrorText(errno));
  std::unique_ptr<LockedFolder> locked(new LockedFolder(std::move(folder)));
  if (!locked->Lock()) return fail("another program is busy with it");
  return locked;
}

bool LockedFolder::Lock() {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (flock(folder_.Get(), LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return true; // a file system without locks
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(kPause);
  }
  DeleteLitter();
  return true;
}

// What writers left behind that were killed while they held the lock. Nobody was told that it had
// been kept.
void LockedFolder::DeleteLitter() {
  for (const std::string& name : NamesIn(folder_.Get()))
    if (name.starts_with(kStagedBegin) && name.ends_with(kStagedEnd)) Delete(name);
}

LockedFolder::~LockedFolder() {
  for (const std::string& name : staged_)
    if (!name.empty()) Delete(name);
}

std::set<std::string> LockedFolder::Names() const {
  std::set<std::string> names;
  for (std::string name : NamesIn(folder_.Get())) {
    std::transform(name.begin(), name.end(), name.begin(), g_ascii_tolower);
    names.insert(std::move(name));
  }
  return names;
}

FileBytes LockedFolder::Read(const std::string& name) const {
  return ReadFileBytes(folder_.Get(), name, Links::Refuse);
}

int LockedFolder::Stage(std::string_view bytes, std::size_t& staged) {
  staged = staged_.size();
  const std::string name = std::string(kStagedBegin) + std::to_string(getpid()) + "-" +
                           std::to_string(staged) + std::string(kStagedEnd);
  constexpr mode_t kUsual = 0666;
  const OwnedDescriptor file(openat(folder_.Get(), name.c_str(),
                                    O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kUsual));
  if (!file) return errno;
  staged_.push_back(name);
  if (const int failed = WriteAll(file.Get(), bytes)) return failed;
  return staged < kFewFiles ? Failed(fsync(file.Get()) != 0) : 0;
}

int LockedFolder::Settle() {
  return staged_.size() > kFewFiles ? Failed(syncfs(folder_.Get()) != 0) : 0;
}

int LockedFolder::NameNew(std::size_t staged, const std::string& name) {
  const int failed = Move(staged_[staged], name);
  if (failed == 0) staged_[staged].clear();
  return failed;
}

int LockedFolder::NameOver(std::size_t staged, const std::string& name) {
  const int folder = folder_.Get();
  const int failed = Failed(renameat(folder, staged_[staged].c_str(), folder, name.c_str()) != 0);
  if (failed == 0) staged_[staged].clear();
  return failed;
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
  const int folder = folder_.Get();
  if (renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // A file system that only knows links.
  if (linkat(folder, from.c_str(), folder, to.c_str(), 0) != 0) return errno;
  return Failed(unlinkat(folder, from.c_str(), 0) != 0);
}

void LockedFolder::Delete(const std::string& name) {
  unlinkat(folder_.Get(), name.c_str(), 0);
}

void LockedFolder::Sync() {
  fsync(folder_.Get());
}

} // namespace halvenor
