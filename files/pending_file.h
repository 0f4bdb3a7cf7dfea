// A file that appears under its name only when it is whole.
#pragma once

#include "files/temporary_file.h"

#include <filesystem>
#include <span>
#include <string>

namespace halvenor {

/// Writes beside the target under a temporary name. `Commit` brings it to the disk and renames;
/// destroyed without it, the temporary file is removed and the target is as it was. A target that
/// exists keeps its permissions, and a link keeps pointing where it points. One that is no regular
/// file (a pipe, a device) is written to directly. One thread.
class PendingFile {
public:
  static constexpr mode_t kUsualMode = 0666;

  /// What killed processes have left behind in the target's folder. Looking for it takes the longer
  /// the more files lie there.
  enum class Leftovers { Remove, Keep };

  /// Makes the file, with the permissions `mode` less the process's mask where there is no target.
  /// False when that fails.
  static PendingFile Create(const std::filesystem::path& target, mode_t mode = kUsualMode,
                            Leftovers leftovers = Leftovers::Remove);
  /// Takes over an open descriptor, which `Problem` calls `name`; it is written to directly.
  static PendingFile Adopt(int descriptor, const std::string& name);

  explicit operator bool() const { return Descriptor() >= 0; }

  /// Appends `bytes`. A wait ends when `stopped` says so after a signal.
  bool Write(std::span<const std::byte> bytes, TemporaryFile::Stopped stopped = nullptr);
  /// Gives the file its name; removes it when that fails.
  bool Commit();

  /// Why the last call failed: an `errno` value, and one line with the name that was asked for.
  [[nodiscard]] int Error() const { return error_; }
  [[nodiscard]] std::string Problem() const;

  /// Open for reading and writing (a direct one for writing), owned by this object; -1 when there
  /// is no file any more.
  [[nodiscard]] int Descriptor() const;
  /// The name that was asked for.
  [[nodiscard]] const std::string& Name() const { return name_; }
  /// Where the bytes go until `Commit`.
  [[nodiscard]] std::filesystem::path Path() const;

private:
  bool Done(int error);
  int OpenDirectly();
  int OpenTemporary(mode_t mode, Leftovers leftovers);
  int Finish();

  std::string name_;
  std::filesystem::path target_; ///< `name_` with links resolved
  OwnedDescriptor direct_;       ///< of a target that is written to directly
  OwnedDescriptor folder_;       ///< declared before what it has to outlive
  TemporaryFile temporary_;
  int error_ = 0;
};

/// "cannot write NAME: the reason that `error` stands for", fit to be shown.
std::string CannotWrite(const std::string& name, int error);

} // namespace halvenor
