// A plug-in's module in this process.
#pragma once

#include "protocol/records.h"

#include <filesystem>
#include <optional>
#include <string>

namespace halvenor {

/// A loaded module and its entry. Once loaded a module stays for the life of the process, whatever
/// becomes of this object: the plug-in keeps a renderer and a lock until the process ends, and
/// libraries that came with it leave handlers behind. Loading the same module again is cheap and
/// yields the same entry. Freely copied.
class PluginModule {
public:
  /// Loads `path`: a bundle (a folder, whose module is Contents/Linux/<its name>) or a module file.
  /// On failure returns nothing and leaves one line in `error` that names the path and the cause.
  static std::optional<PluginModule> Load(const std::filesystem::path& path, std::string& error);

  [[nodiscard]] PluginEntryProc Entry() const { return entry_; }
  /// The bundle or file that was asked for, absolute.
  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

private:
  PluginModule(PluginEntryProc entry, std::filesystem::path path)
      : entry_(entry), path_(std::move(path)) {}

  PluginEntryProc entry_;
  std::filesystem::path path_;
};

} // namespace halvenor
