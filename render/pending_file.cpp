#include "render/pending_file.h"

#include "render/stop_signals.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace halvenor::render {
namespace {

namespace fs = std::filesystem;

// As a new file of the user's would have it: a temporary one is private at first.
void GiveUsualMode(int fd) {
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
}

} // namespace

std::string CannotWrite(const std::string& name, int errorNumber) {
  return "cannot write " + name + ": " + std::generic_category().message(errorNumber);
}

std::optional<PendingFile> PendingFile::Create(const fs::path& asked, std::string& error) {
  std::error_code failed;
  const fs::file_status kind = fs::status(asked, failed);
  if (fs::is_directory(kind)) {
    error = CannotWrite(asked.string(), EISDIR);
    return std::nullopt;
  }
  // A link keeps pointing where it points: what it points at is replaced.
  const fs::path target = fs::exists(kind) ? fs::canonical(asked, failed) : asked;
  if (fs::exists(kind) && !fs::is_regular_file(kind)) {
    const int fd = open(target.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd >= 0) return PendingFile(fd, asked.string(), target, target);
  } else {
    std::string path =
        (target.parent_path() / ".").string() + target.filename().string() + ".XXXXXX";
    const int fd = mkostemp(path.data(), O_CLOEXEC);
    if (fd >= 0) {
      GiveUsualMode(fd);
      return PendingFile(fd, asked.string(), target, path);
    }
  }
  error = CannotWrite(asked.string(), errno);
  return std::nullopt;
}

PendingFile::PendingFile(PendingFile&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)), name_(std::move(other.name_)),
      target_(std::move(other.target_)), path_(std::move(other.path_)) {}

PendingFile& PendingFile::operator=(PendingFile&& other) noexcept {
  std::swap(fd_, other.fd_);
  std::swap(name_, other.name_);
  std::swap(target_, other.target_);
  std::swap(path_, other.path_);
  return *this;
}

PendingFile::~PendingFile() {
  if (fd_ < 0) return;
  close(fd_);
  if (IsTemporary()) unlink(path_.c_str());
}

bool PendingFile::Write(std::span<const std::byte> bytes, std::string& error) {
  const StopSignals::Interruptible interruptible;
  while (!bytes.empty()) {
    const ssize_t written = write(fd_, bytes.data(), bytes.size());
    if (written >= 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    // A signal also cuts a write short that has begun.
    if ((written < 0 && errno != EINTR) || (!bytes.empty() && StopSignals::Arrived() != 0)) {
      error = CannotWrite(name_, errno);
      return false;
    }
  }
  return true;
}

bool PendingFile::Commit(std::string& error) {
  // Some file systems admit only now that the disk is full.
  const bool closed = close(std::exchange(fd_, -1)) == 0;
  if (closed && (!IsTemporary() || rename(path_.c_str(), target_.c_str()) == 0)) return true;
  error = CannotWrite(name_, errno);
  if (IsTemporary()) unlink(path_.c_str());
  return false;
}

} // namespace halvenor::render
