// A folder of small files that several programs change.
#pragma once

#include "files/file_bytes.h"
#include "files/temporary_file.h"

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {

/// Holds the folder's lock while it lives. The lock is advisory; `NameNew` does not overwrite the
/// files of programs that ignore it either. New files are staged under temporary names; the
/// destructor removes those that have no name of their own. Results are `errno` values, 0 for
/// success.
class LockedFolder {
public:
  /// Makes the folder when it is missing. Waits for another holder for a few seconds. On failure
  /// returns null and leaves one line in `problem`.
  static std::unique_ptr<LockedFolder> Open(const std::filesystem::path& path,
                                            std::string& problem);
  LockedFolder(const LockedFolder&) = delete;
  LockedFolder& operator=(const LockedFolder&) = delete;

  /// The names of everything in the folder, in lower case.
  [[nodiscard]] std::set<std::string> Names() const;
  [[nodiscard]] FileBytes Read(const std::string& name) const;

  /// Writes a file without a name yet; `staged` stands for it from then on.
  int Stage(std::string_view bytes, std::size_t& staged);
  /// Everything staged is on the disk.
  int Settle();
  /// Gives a staged file its name. `NameNew` never replaces: EEXIST.
  int NameNew(std::size_t staged, const std::string& name);
  int NameOver(std::size_t staged, const std::string& name);

  /// Moves a file, whatever it is, into the folder "removed" in here; `where` becomes its new name.
  int SetAside(const std::string& name, std::string& where);
  /// Moves a file without ever replacing another.
  int Move(const std::string& from, const std::string& to);
  void Delete(const std::string& name);
  void Sync();

private:
  explicit LockedFolder(OwnedDescriptor folder) : folder_(std::move(folder)) {}
  bool Lock();

  OwnedDescriptor folder_;
  std::vector<TemporaryFile> staged_;
};

/// The names in a folder.
std::vector<std::string> NamesIn(int folder);

} // namespace halvenor
