#include "presets/preset_store.h"

#include "files/file_bytes.h"
#include "files/locked_folder.h"
#include "files/printable.h"
#include "files/translated.h"
#include "presets/preset_commit.h"
#include "presets/preset_names.h"

#include <glib.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

std::optional<StoredPreset> Parse(std::string bytes, std::string& problem) {
  auto presets = ParsePresets(bytes, problem);
  if (!presets) return std::nullopt;
  if (presets->size() != 1) {
    problem = Translated("halvenor::Presets", "contains several presets: import it instead");
    return std::nullopt;
  }
  return StoredPreset{std::move(presets->front()), std::move(bytes)};
}

std::optional<StoredPreset> ReadPreset(int folder, const std::string& name, const std::string& id,
                                       std::string& problem) {
  FileBytes read = ReadFileBytes(folder, name, Links::Refuse);
  if (read.bytes && !IsPresetId(id))
    problem = Translated("halvenor::Presets",
                         "has a name other than a-z, 0-9, - and _: rename or import it");
  else if (read.bytes)
    return Parse(std::move(*read.bytes), problem);
  else
    problem = read.reason; // none when it has just gone
  return std::nullopt;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), g_ascii_tolower);
  return text;
}

} // namespace

PresetChange Reversed(const PresetChange& change) {
  PresetChange reversed = change;
  std::reverse(reversed.edits.begin(), reversed.edits.end());
  for (PresetEdit& edit : reversed.edits)
    std::swap(edit.before, edit.after);
  for (PresetMark& mark : reversed.marks)
    mark.on = !mark.on;
  return reversed;
}

StoredPresets ReadPresetFolder(const fs::path& path,
                               std::map<std::string, std::string>& unreadable) {
  StoredPresets presets;
  const auto report = [&](const std::string& id, const fs::path& file, const std::string& reason) {
    std::string& line = unreadable[Lower(id)];
    line += (line.empty() ? "" : "; ") + Printable(file.string()) + ": " + Printable(reason);
  };
  const OwnedDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) {
    if (errno != ENOENT) report("", path, ErrorText(errno));
    return presets;
  }
  std::vector<std::string> names = NamesIn(folder.Get());
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    if (name.starts_with('.') || !name.ends_with(kPresetExtension)) continue;
    const std::string id = name.substr(0, name.size() - kPresetExtension.size());
    std::string problem;
    if (auto preset = ReadPreset(folder.Get(), name, id, problem))
      presets.emplace(id, std::move(*preset));
    else if (!problem.empty())
      report(id, path / name, problem);
  }
  return presets;
}

std::vector<std::string> PresetStore::Load() {
  unreadable_.clear();
  marks_.clear();
  files_ = ReadPresetFolder(path_, unreadable_);
  std::vector<std::string> lines;
  for (const auto& [id, line] : unreadable_)
    lines.push_back(line);

  const fs::path file = path_ / kPresetMarksFile;
  const FileBytes read = ReadFileBytes(AT_FDCWD, file.string(), Links::Refuse);
  std::string problem = read.reason;
  if (read.bytes)
    if (auto marks = ParsePresetMarks(*read.bytes, problem)) marks_ = std::move(*marks);
  if (!problem.empty())
    lines.push_back(
        Filled(Translated("halvenor::Presets", "%1: %2; favorites and removed presets are unknown"),
               {Printable(file.string()), Printable(problem)}));
  return lines;
}

bool PresetStore::IsMarked(PresetMark::Kind kind, const std::string& id) const {
  const auto marked = marks_.find(kind);
  return marked != marks_.end() && marked->second.contains(id);
}

std::optional<std::string> PresetStore::Commit(PresetChange& change, const Ids& fixed) {
  std::string problem;
  const auto folder = LockedFolder::Open(path_, problem);
  if (!folder) return problem;
  PresetCommit commit(*folder, change, fixed);
  if (!commit.Run())
    return Filled(Translated("halvenor::Presets", "cannot write to %1: %2"),
                  {Printable(path_.string()), commit.Error()});

  for (const PresetEdit& edit : change.edits)
    if (!edit.after) files_.erase(edit.id);
  for (const PresetWrite& write : commit.Writes())
    if (auto preset = Parse(write.bytes, problem))
      files_.insert_or_assign(write.id, std::move(*preset));
  if (commit.Marks()) marks_ = *commit.Marks();
  return std::nullopt;
}

} // namespace halvenor
