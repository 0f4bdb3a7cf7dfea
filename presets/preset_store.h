// A person's presets as files, and the changes made to them.
#pragma once

#include "presets/preset_file.h"
#include "presets/preset_marks.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace halvenor {

/// One file's change. Its bytes before are what the person saw when deciding.
struct PresetEdit {
  std::string id;
  std::optional<std::string> before; ///< nothing: a new file
  std::optional<std::string> after;  ///< nothing: the file is set aside
};

struct PresetChange {
  std::string text; ///< what it does, for a menu
  std::vector<PresetEdit> edits;
  std::vector<PresetMark> marks;
  /// New ids by the old ones that were found taken.
  std::map<std::string, std::string> moved;
};

/// What takes `change` back.
PresetChange Reversed(const PresetChange& change);

struct StoredPreset {
  NamedLook preset;
  std::string bytes;
};
using StoredPresets = std::map<std::string, StoredPreset>; ///< by id

/// Reads every <id>.preset of `folder`, one preset each. `unreadable` becomes one line for each of
/// the others, by the names of their files in lower case and without extension.
StoredPresets ReadPresetFolder(const std::filesystem::path& folder,
                               std::map<std::string, std::string>& unreadable);

class PresetStore {
public:
  using Ids = std::set<std::string>;

  explicit PresetStore(std::filesystem::path folder) : path_(std::move(folder)) {}

  /// Reads the folder anew. Returns one line for every file that could not be read.
  std::vector<std::string> Load();

  [[nodiscard]] const StoredPresets& Files() const { return files_; }
  [[nodiscard]] bool IsMarked(PresetMark::Kind kind, const std::string& id) const;
  /// What `Load` said about the files that could not be read, by what their ids would be.
  [[nodiscard]] const std::map<std::string, std::string>& Unreadable() const { return unreadable_; }
  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

  /// Makes `change` on the disk, or none of it and returns why. New files whose ids are taken get
  /// others, in `change` too, but for those of `fixed`. A file that another program has changed
  /// meanwhile is kept as a preset of its own, or as what is set aside.
  std::optional<std::string> Commit(PresetChange& change, const Ids& fixed);

private:
  std::filesystem::path path_;
  StoredPresets files_;
  std::map<std::string, std::string> unreadable_;
  PresetMarks marks_;
};

} // namespace halvenor
