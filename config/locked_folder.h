// A folder of small files that several programs change.
#pragma once

#include "config/file_bytes.h"

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {

/// Holds the folder's lock as long as it lives, against others who take it. Who does not take it is
/// still never overwritten by `NameNew`. New files are staged under temporary names first; those
/// that have not been named by the end are removed. Results are `errno` values, 0 when all is well.
class LockedFolder {
public:
  /// Makes the folder when it is missing. Waits for another holder for a few seconds. On failure
  /// returns null and leaves one line in `problem`.
  static std::unique_ptr<LockedFolder> Open(const std::filesystem::path& path,
                                            std::string& problem);
  ~LockedFolder();
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
  void DeleteLitter();

  OwnedDescriptor folder_;
  std::vector<std::string> staged_; ///< temporary names; empty once named
};

/// The names in a folder.
std::vector<std::string> NamesIn(int folder);

} // namespace halvenor
