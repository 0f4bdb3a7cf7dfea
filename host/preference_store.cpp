#include "host/preference_store.h"

#include "files/file_bytes.h"
#include "files/pending_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <system_error>
#include <utility>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

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
  const OpenedFile file =
      OpenRegularFile(AT_FDCWD, FileOf(plugin).string(), Links::Follow, kLargestSmallFile);
  if (!file) return file.error == ENOENT ? status::kOk : -file.error;
  // Into a buffer of our own: a failure half-way must not change the plug-in's.
  std::vector<std::byte> block(buffer.size());
  const std::int64_t size = ReadAt(file.descriptor.Get(), 0, block);
  if (size < 0) return -errno;
  return CopyOut(std::span(block).first(static_cast<std::size_t>(size)), buffer, sizeRead);
}

Status FilePreferenceStore::Write(std::string_view plugin, std::span<const std::byte> block) {
  std::error_code failed;
  fs::create_directories(folder_, failed);
  if (failed) return -failed.value();
  constexpr mode_t kPrivate = 0600;
  PendingFile file = PendingFile::Create(FileOf(plugin), kPrivate);
  const bool written = file && file.Write(block) && file.Commit();
  return written ? status::kOk : -file.Error();
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
