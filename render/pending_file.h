// A file that appears under its name only when it is whole.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace halvenor::render {

/// Writes beside the target under a temporary name. `Commit` renames; destroyed without it, the
/// temporary file is removed and the target is as it was. A target that exists and is no ordinary
/// file (a pipe, a device) is written to directly. Not safe for concurrent calls.
class PendingFile {
public:
  /// On failure returns nothing and leaves one line in `error`.
  static std::optional<PendingFile> Create(const std::filesystem::path& target, std::string& error);
  /// Takes over an open descriptor, which errors call `name`; it is written to directly.
  static PendingFile Adopt(int fd, const std::string& name) { return {fd, name, {}, {}}; }
  ~PendingFile();
  PendingFile(PendingFile&& other) noexcept;
  PendingFile& operator=(PendingFile&& other) noexcept;

  /// Appends `bytes`; a stop signal ends a wait. On failure returns false and leaves one line in
  /// `error`.
  bool Write(std::span<const std::byte> bytes, std::string& error);

  /// Gives the file its name. On failure returns false, leaves one line in `error` and removes it.
  bool Commit(std::string& error);

  /// Open for reading and writing, owned by this object.
  [[nodiscard]] int Descriptor() const { return fd_; }
  /// The name that was asked for, for messages.
  [[nodiscard]] const std::string& Name() const { return name_; }
  /// Where the bytes go until `Commit`.
  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

private:
  PendingFile(int fd, std::string name, std::filesystem::path target, std::filesystem::path path)
      : fd_(fd), name_(std::move(name)), target_(std::move(target)), path_(std::move(path)) {}
  [[nodiscard]] bool IsTemporary() const { return path_ != target_; }

  int fd_; ///< -1: committed or moved from
  std::string name_;
  std::filesystem::path target_; ///< `name_` with links resolved
  std::filesystem::path path_;
};

/// "cannot write NAME: the reason that `errorNumber` stands for".
std::string CannotWrite(const std::string& name, int errorNumber);

} // namespace halvenor::render
