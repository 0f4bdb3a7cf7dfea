#include "files/pending_file.h"

#include "files/file_bytes.h"
#include "files/printable.h"
#include "files/translated.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFileKind = "file";
constexpr mode_t kPermissions = 07777;

} // namespace

std::string CannotWrite(const std::string& name, int error) {
  return Filled(Translated("halvenor::Files", "cannot write %1: %2"),
                {Printable(name, kMessageCharacters), ErrorText(error)});
}

PendingFile PendingFile::Create(const fs::path& asked, mode_t mode, Leftovers leftovers) {
  PendingFile file;
  file.name_ = asked.string();
  std::error_code none;
  const fs::file_status kind = fs::status(asked, none);
  file.target_ = fs::exists(kind) ? fs::canonical(asked, none) : asked;
  if (fs::is_directory(kind))
    file.error_ = EISDIR;
  else if (fs::exists(kind) && !fs::is_regular_file(kind))
    file.error_ = file.OpenDirectly();
  else
    file.error_ = file.OpenTemporary(mode, leftovers);
  if (file.error_ != 0) file.temporary_ = TemporaryFile();
  return file;
}

PendingFile PendingFile::Adopt(int descriptor, const std::string& name) {
  PendingFile file;
  file.name_ = name;
  file.direct_ = OwnedDescriptor(descriptor);
  return file;
}

int PendingFile::OpenDirectly() {
  direct_ = OwnedDescriptor(open(target_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  return direct_ ? 0 : errno;
}

int PendingFile::OpenTemporary(mode_t mode, Leftovers leftovers) {
  const fs::path folder = target_.has_parent_path() ? target_.parent_path() : ".";
  folder_ = OwnedDescriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder_) return errno;
  struct stat former {};
  const bool exists = stat(target_.c_str(), &former) == 0;
  if (!exists && errno != ENOENT) return errno; // a name too long, say
  if (leftovers == Leftovers::Remove) TemporaryFile::Sweep(folder_.Get(), kFileKind);
  const int failed = TemporaryFile::Create(folder_.Get(), kFileKind, mode, temporary_);
  if (failed != 0 || !exists) return failed;
  return fchmod(temporary_.Descriptor(), former.st_mode & kPermissions) == 0 ? 0 : errno;
}

bool PendingFile::Done(int error) {
  error_ = error;
  return error == 0;
}

std::string PendingFile::Problem() const {
  return CannotWrite(name_, error_);
}

int PendingFile::Descriptor() const {
  return direct_ ? direct_.Get() : temporary_.Descriptor();
}

fs::path PendingFile::Path() const {
  return direct_ ? target_ : target_.parent_path() / temporary_.Name();
}

bool PendingFile::Write(std::span<const std::byte> bytes, TemporaryFile::Stopped stopped) {
  return Done(WriteAll(Descriptor(), bytes, stopped));
}

int PendingFile::Finish() {
  if (direct_) return direct_.Close() ? 0 : errno;
  if (const int failed = temporary_.Sync()) return failed;
  if (const int failed = temporary_.NameOver(target_.filename().string())) return failed;
  fsync(folder_.Get());
  return temporary_.Close();
}

bool PendingFile::Commit() {
  const bool committed = Done(Finish());
  if (!committed) temporary_ = TemporaryFile();
  return committed;
}

} // namespace halvenor
