// Presets as text: one readable file with one preset or many, the settings by their names.
//
//   [Halvenor Presets]
//   format=1
//
//   [Preset 1]
//   name=Ember Tide
//   intensity=0.4
//   innerColor=0.37,0.73,1
//   ...
//
// The files have GKeyFile's syntax. A field that a file leaves out has its value of a first run; a
// key that nobody knows is left aside.
#pragma once

#include "protocol/settings.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {

/// A name is UTF-8, one line, trimmed, 1 to 80 characters.
struct NamedLook {
  std::string name;
  Settings look = DefaultSettings(); ///< of which only the look counts
};

/// `name` as it may be kept: one line, trimmed, cut to 80 characters; empty when nothing is left.
std::string TidyPresetName(std::string_view name);

/// The presets of a file's text. On failure returns nothing and leaves in `problem` what is wrong
/// with the file, as the end of a sentence that begins with its name.
std::optional<std::vector<NamedLook>> ParsePresets(std::string_view text, std::string& problem);

/// The text of a file with `presets`. Values that their fields refuse become ones that they take.
std::string PrintPresets(std::span<const NamedLook> presets);

/// Reads every preset of `file`. When it is not a preset file, is of a format to come, has a value
/// that its field refuses, cannot be read or is larger than 16 MB, returns nothing and leaves one
/// line for a person, which names the file, in `problem`. Never writes.
std::optional<std::vector<NamedLook>> ReadPresetFile(const std::filesystem::path& file,
                                                     std::string& problem);

/// Writes `presets` to `file`. However it ends, a full disk or kill -9 included, the old or the new
/// file is there whole. False with one line in `problem`.
bool WritePresetFile(const std::filesystem::path& file, std::span<const NamedLook> presets,
                     std::string& problem);

} // namespace halvenor
