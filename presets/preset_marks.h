// What is kept about presets beside their own files.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace halvenor {

struct PresetMark {
  enum class Kind { Favorite, Hidden } kind; ///< hidden: a factory preset that was removed
  std::string id;
  bool on;
};

/// The ids that have a mark.
using PresetMarks = std::map<PresetMark::Kind, std::set<std::string>>;

void Apply(const PresetMark& mark, PresetMarks& marks);

/// On failure returns nothing and leaves in `problem` what is wrong with the file, as the end of a
/// sentence that begins with its name.
std::optional<PresetMarks> ParsePresetMarks(std::string_view text, std::string& problem);
std::string PrintPresetMarks(const PresetMarks& marks);

} // namespace halvenor
