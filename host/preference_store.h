// Where hosts keep what plug-ins ask them to keep: one opaque block of bytes per plug-in.
#pragma once

#include "protocol/four_char_code.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {

/// A store of blocks by the plug-in's name. Used on the host's thread.
class PreferenceStore {
public:
  virtual ~PreferenceStore() = default;

  /// Copies the block of `plugin` into `buffer`. A block larger than the buffer is cut to the
  /// buffer's size. `sizeRead` becomes the number of bytes copied: 0 with status 0 when nothing is
  /// stored, and 0 with another status when what is stored cannot be read.
  virtual Status Read(std::string_view plugin, std::span<std::byte> buffer,
                      std::size_t& sizeRead) = 0;

  /// Replaces the block of `plugin`. On a status other than 0 the old block is still there.
  virtual Status Write(std::string_view plugin, std::span<const std::byte> block) = 0;
};

/// Keeps the blocks as files of a folder. After a write that fails or is killed, the file holds the
/// complete old or the complete new block. Statuses other than 0 are negated `errno` values.
class FilePreferenceStore final : public PreferenceStore {
public:
  /// The folder is made with the first write.
  explicit FilePreferenceStore(std::filesystem::path folder);

  /// $XDG_CONFIG_HOME/halvenor/preferences, or below ~/.config when that is unset or relative.
  static std::filesystem::path DefaultFolder();

  Status Read(std::string_view plugin, std::span<std::byte> buffer, std::size_t& sizeRead) override;
  Status Write(std::string_view plugin, std::span<const std::byte> block) override;

  /// The file of `plugin`; characters that do not belong in a file name are escaped.
  [[nodiscard]] std::filesystem::path FileOf(std::string_view plugin) const;

private:
  std::filesystem::path folder_;
};

/// Keeps the blocks as long as it lives.
class MemoryPreferenceStore final : public PreferenceStore {
public:
  Status Read(std::string_view plugin, std::span<std::byte> buffer, std::size_t& sizeRead) override;
  Status Write(std::string_view plugin, std::span<const std::byte> block) override;

private:
  std::map<std::string, std::vector<std::byte>, std::less<>> blocks_;
};

} // namespace halvenor
