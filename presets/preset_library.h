// The presets of a person: those that came with the program, and their own.
#pragma once

#include "presets/preset_file.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {

struct Preset {
  /// Its file's name without extension; lower-case ASCII; never changes while the preset lives.
  std::string id;
  std::string name; ///< UTF-8, unique in a library but for case
  Settings look;    ///< of which only the look counts
  bool favorite = false;
  enum class Origin { Factory, ChangedFactory, Own } origin = Origin::Own;
  /// The picture that came with a factory preset of the same look; else empty.
  std::filesystem::path picture;
};

/// Keeps presets as one file each. Every change is on the disk when its function returns, and
/// leaves the file before it whole when it fails; what is removed goes to a folder "removed" beside
/// the others and is never deleted. Files that cannot be read are left alone, and names that they
/// have are not used. Two programs at once never overwrite each other's presets. One thread.
///
/// Functions that can fail return nothing when all went well, else one line for a person; then
/// nothing has changed.
class PresetLibrary {
public:
  using Problem = std::optional<std::string>;

  struct Folders {
    std::filesystem::path own;     ///< made with the first write
    std::filesystem::path factory; ///< only read; empty: there is none
  };

  /// $XDG_DATA_HOME/halvenor/presets, or below ~/.local/share when that is unset or relative.
  static std::filesystem::path DefaultFolder();
  /// The factory presets of the plug-in's bundle at `plugin`.
  static std::filesystem::path FactoryFolder(const std::filesystem::path& plugin);

  explicit PresetLibrary(Folders folders);
  ~PresetLibrary();
  PresetLibrary(const PresetLibrary&) = delete;
  PresetLibrary& operator=(const PresetLibrary&) = delete;

  /// Reads the folders anew. Returns one line for every file that could not be read.
  std::vector<std::string> Load();

  /// In the order of their names, as people sort them. Valid until the next change.
  [[nodiscard]] std::span<const Preset> Presets() const;
  /// Null when there is none. `FindByName` takes the name in any case, or the id.
  [[nodiscard]] const Preset* Find(std::string_view id) const;
  [[nodiscard]] const Preset* FindByName(std::string_view name) const;

  /// What `Load` said about the file that the preset called `name` would lie in; null: nothing.
  [[nodiscard]] const std::string* Unreadable(std::string_view name) const;

  /// A name that is not taken: `wish`, or `wish` with a number.
  [[nodiscard]] std::string FreshName(std::string_view wish) const;

  /// `id`, when not null, becomes the new preset's.
  Problem Add(std::string_view name, const Settings& look, std::string* id = nullptr);
  Problem Duplicate(std::string_view id, std::string* newId = nullptr);
  Problem Rename(std::string_view id, std::string_view name);
  /// Gives the preset another look.
  Problem Replace(std::string_view id, const Settings& look);
  Problem Remove(std::string_view id);
  Problem SetFavorite(std::string_view id, bool favorite);
  /// Factory presets that were changed, renamed or removed are as they came; own ones stay, and so
  /// do the changed ones under names of their own.
  Problem RestoreFactory();

  /// What `Undo` would take back, for a menu ("Delete \"Ember Tide\""); empty: nothing.
  [[nodiscard]] std::string UndoText() const;
  /// Takes back the last change of this object's life; up to 100 of them, one after the other.
  Problem Undo();

  /// Adds every preset of `file` under fresh names; `added` becomes their ids.
  Problem Import(const std::filesystem::path& file, std::vector<std::string>* added = nullptr);
  /// Writes the presets with these ids to one file.
  Problem Export(const std::filesystem::path& file, std::span<const std::string> ids) const;

private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

} // namespace halvenor
