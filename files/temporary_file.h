// A file that has no name of its own yet.
#pragma once

#include "files/owned_descriptor.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace halvenor {

/// A new file under a hidden temporary name, removed unless it gets its own. While it is open it is
/// locked, so that `Sweep` tells it from what a killed process has left behind. Results are `errno`
/// values, 0 when all is well. One thread.
class TemporaryFile {
public:
  /// Ends a wait in `Write` when it returns true after a signal.
  using Stopped = bool (*)();

  /// Makes one in `folder`, a descriptor that outlives it. Files of one `kind` are swept together.
  static int Create(int folder, std::string_view kind, mode_t mode, TemporaryFile& made);

  TemporaryFile() = default;
  ~TemporaryFile();
  TemporaryFile(TemporaryFile&& other) noexcept;
  TemporaryFile& operator=(TemporaryFile&& other) noexcept;

  int Write(std::span<const std::byte> bytes, Stopped stopped = nullptr) const;
  /// Everything written is on the disk.
  [[nodiscard]] int Sync() const;
  /// Closes it before it has a name: from then on `Sweep` may take it.
  int Close();

  /// Gives it its own name in the folder. `NameNew` never replaces: EEXIST.
  int NameOver(const std::string& name);
  int NameNew(const std::string& name);

  [[nodiscard]] int Descriptor() const { return file_.Get(); }
  /// The temporary name; empty when there is none any more.
  [[nodiscard]] const std::string& Name() const { return name_; }

  /// Removes the files of `kind` in `folder` that no process holds open.
  static void Sweep(int folder, std::string_view kind);
  /// Removes all of this process that have no name yet, for a process that ends at once.
  static void RemoveAll();

private:
  void Named();

  int folder_ = -1;
  OwnedDescriptor file_;
  std::string name_;
};

/// Writes all of `bytes`; an `errno` value.
int WriteAll(int descriptor, std::span<const std::byte> bytes,
             TemporaryFile::Stopped stopped = nullptr);

/// Moves a file without ever replacing another; an `errno` value.
int MoveWithoutReplacing(int folder, const std::string& from, const std::string& to);

} // namespace halvenor
