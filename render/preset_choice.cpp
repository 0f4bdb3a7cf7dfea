#include "render/preset_choice.h"

#include "files/printable.h"
#include "presets/preset_library.h"
#include "presets/preset_names.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <system_error>
#include <utility>
#include <vector>

namespace halvenor::render {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

constexpr std::string_view kExtension = ".preset";
constexpr std::size_t kMostListed = 30;
constexpr std::size_t kMostProposed = 3;

bool IsFileWish(const std::string& wish) {
  return wish.find('/') != wish.npos || wish.ends_with(kExtension) ||
         wish.find(std::string(kExtension) + "#") != wish.npos;
}

struct FileWish {
  std::string file;
  std::string name; ///< empty: the only one
};

// Both file names and presets' names may have a "#" of their own: what exists decides.
FileWish SplitFileWish(const std::string& wish) {
  std::error_code none;
  for (std::size_t mark = wish.size(); mark != wish.npos && mark > 0;
       mark = wish.rfind('#', mark - 1)) {
    const std::string file = wish.substr(0, mark);
    if (fs::exists(file, none)) return {file, mark < wish.size() ? wish.substr(mark + 1) : ""};
  }
  return {wish, ""};
}

// The edit distance (Levenshtein).
std::size_t Distance(const std::string& one, const std::string& other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t k = 0; k < other.size(); ++k) {
      const std::size_t replaced = diagonal + (one[i] == other[k] ? 0 : 1);
      diagonal = row[k + 1];
      row[k + 1] = std::min({replaced, diagonal + 1, row[k] + 1});
    }
  }
  return row.back();
}

std::string Listed(const Names& names, std::size_t most) {
  std::string list;
  for (std::size_t i = 0; i < std::min(names.size(), most); ++i)
    list += (i ? ", \"" : "\"") + names[i] + "\"";
  if (names.size() > most) list += " and " + std::to_string(names.size() - most) + " more";
  return list;
}

// The end of an error message: similar names.
std::string Proposal(const std::string& wish, const Names& names) {
  const std::string wanted = Folded(wish);
  std::vector<std::pair<std::size_t, std::string>> near;
  for (const std::string& name : names) {
    const std::string folded = Folded(name);
    const bool isPart = !wanted.empty() && folded.find(wanted) != folded.npos;
    const std::size_t distance = isPart ? 0 : Distance(wanted, folded);
    if (distance <= std::max(wanted.size(), folded.size()) / 2) near.emplace_back(distance, name);
  }
  if (near.empty()) return "; see --list-presets";
  std::stable_sort(near.begin(), near.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  Names nearest;
  for (std::size_t i = 0; i < std::min(near.size(), kMostProposed); ++i)
    nearest.push_back(near[i].second);
  return "; did you mean " + Listed(nearest, kMostProposed) + "?";
}

std::optional<Settings> ChooseFromFile(const FileWish& wish, std::string& error) {
  const auto presets = ReadPresetFile(wish.file, error);
  if (!presets) return std::nullopt;
  if (wish.name.empty() && presets->size() == 1) return presets->front().look;
  Names names;
  for (const NamedLook& preset : *presets) {
    if (!wish.name.empty() && Folded(preset.name) == Folded(TidyPresetName(wish.name)))
      return preset.look;
    names.push_back(preset.name);
  }
  error = Printable(wish.file);
  if (wish.name.empty())
    error += " holds several presets, choose one as FILE#NAME: " + Listed(names, kMostListed);
  else
    error +=
        " has no preset \"" + Printable(wish.name) + "\"; it has " + Listed(names, kMostListed);
  return std::nullopt;
}

PresetLibrary LibraryBeside(const fs::path& plugin) {
  std::error_code none;
  fs::path bundle = fs::canonical(plugin, none);
  if (fs::is_regular_file(bundle, none)) bundle = bundle.parent_path() / "../..";
  return PresetLibrary({PresetLibrary::DefaultFolder(), PresetLibrary::FactoryFolder(bundle)});
}

std::string Remarks(const Preset& preset) {
  std::string remarks;
  if (preset.origin == Preset::Origin::Own) remarks = "own";
  if (preset.origin == Preset::Origin::ChangedFactory) remarks = "changed";
  if (preset.favorite) remarks += remarks.empty() ? "favorite" : ", favorite";
  return remarks.empty() ? "" : "\t" + remarks;
}

} // namespace

std::optional<Settings> ChoosePreset(const std::string& wish, const fs::path& plugin,
                                     std::string& error) {
  if (IsFileWish(wish)) {
    auto look = ChooseFromFile(SplitFileWish(wish), error);
    if (!look) error = "--preset: " + error;
    return look;
  }
  PresetLibrary library = LibraryBeside(plugin);
  library.Load();
  // If a changed factory preset cannot be read, the original must not be used in its place.
  if (const std::string* const unreadable = library.Unreadable(wish)) {
    error = "--preset: " + *unreadable;
    return std::nullopt;
  }
  if (const Preset* const preset = library.FindByName(wish)) return preset->look;
  Names names;
  for (const Preset& preset : library.Presets())
    names.push_back(preset.name);
  error = "--preset: there is no preset \"" + Printable(wish) + "\"" + Proposal(wish, names);
  return std::nullopt;
}

bool ListPresets(const fs::path& plugin) {
  PresetLibrary library = LibraryBeside(plugin);
  for (const std::string& problem : library.Load())
    std::fprintf(stderr, "halvenor-render: %s\n", Printable(problem, kMessageCharacters).c_str());
  for (const Preset& preset : library.Presets())
    std::printf("%s%s\n", Printable(preset.name).c_str(), Remarks(preset).c_str());
  return std::fflush(stdout) == 0;
}

} // namespace halvenor::render
