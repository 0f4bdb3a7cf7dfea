#include "presets/preset_library.h"

#include "files/printable.h"
#include "files/translated.h"
#include "presets/look.h"
#include "presets/preset_catalog.h"
#include "presets/preset_names.h"
#include "presets/preset_store.h"

#include <glib.h>

#include <cstdlib>
#include <deque>
#include <map>
#include <set>
#include <system_error>
#include <utility>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using Kind = PresetMark::Kind;
using Problem = PresetLibrary::Problem;

constexpr std::size_t kMostUndone = 100;

std::string BytesOf(const std::string& name, const Settings& look) {
  const NamedLook preset{name, look};
  return PrintPresets(std::span(&preset, 1));
}

bool IsInside(const fs::path& file, const fs::path& folder) {
  std::error_code none;
  const fs::path absolute = fs::absolute(file, none);
  return fs::equivalent(absolute.parent_path(), folder, none);
}

} // namespace

struct PresetLibrary::Impl {
  explicit Impl(Folders folders)
      : store(std::move(folders.own)), factoryFolder(std::move(folders.factory)) {}

  [[nodiscard]] std::optional<std::string> BytesOnDisk(const std::string& id) const;
  [[nodiscard]] PresetEdit NewPreset(const std::string& name, const Settings& look) const;
  /// Tidies `name`. A problem if a preset other than `except` has it.
  Problem CheckName(std::string& name, std::string_view except) const;
  Problem Make(PresetChange change, std::string* newId = nullptr);
  Problem Rewrite(const Preset& preset, std::string text, const std::string& name,
                  const Settings& look);
  void RestoreOne(const std::string& id, const StoredPreset& changed, PresetChange& change,
                  std::set<std::string>& taken) const;
  Problem Undo();

  PresetStore store;
  const fs::path factoryFolder;
  PresetCatalog catalog;
  std::deque<PresetChange> done;
};

std::optional<std::string> PresetLibrary::Impl::BytesOnDisk(const std::string& id) const {
  const auto file = store.Files().find(id);
  return file == store.Files().end() ? std::nullopt : std::optional(file->second.bytes);
}

Problem PresetLibrary::Impl::Make(PresetChange change, std::string* newId) {
  if (Problem problem = store.Commit(change, catalog.FactoryIds())) return problem;
  if (newId && !change.edits.empty()) *newId = change.edits.front().id;
  done.push_back(std::move(change));
  if (done.size() > kMostUndone) done.pop_front();
  catalog.Show(store);
  return std::nullopt;
}

Problem PresetLibrary::Impl::Undo() {
  if (done.empty()) return Translated("halvenor::Presets", "There is nothing to undo.");
  PresetChange change = Reversed(done.back());
  change.moved.clear();
  if (Problem problem = store.Commit(change, catalog.FactoryIds())) return problem;
  done.pop_back();
  const auto follow = [&](std::string& id) {
    if (const auto moved = change.moved.find(id); moved != change.moved.end()) id = moved->second;
  };
  for (PresetChange& earlier : done) {
    for (PresetEdit& edit : earlier.edits)
      follow(edit.id);
    for (PresetMark& mark : earlier.marks)
      follow(mark.id);
  }
  catalog.Show(store);
  return std::nullopt;
}

PresetEdit PresetLibrary::Impl::NewPreset(const std::string& name, const Settings& look) const {
  return {FreshIdFor(name, catalog.FactoryIds()), std::nullopt, BytesOf(name, look)};
}

Problem PresetLibrary::Impl::CheckName(std::string& name, std::string_view except) const {
  name = TidyPresetName(name);
  if (name.empty()) return Translated("halvenor::Presets", "A preset needs a name.");
  for (const Preset& preset : catalog.Presets())
    if (preset.id != except && Folded(preset.name) == Folded(name))
      return Filled(Translated("halvenor::Presets", "There is already a preset called \"%1\"."),
                    {preset.name});
  return std::nullopt;
}

Problem PresetLibrary::Impl::Rewrite(const Preset& preset, std::string text,
                                     const std::string& name, const Settings& look) {
  PresetChange change{std::move(text), {}, {}, {}};
  change.edits.push_back({preset.id, BytesOnDisk(preset.id), BytesOf(name, look)});
  return Make(std::move(change));
}

void PresetLibrary::Impl::RestoreOne(const std::string& id, const StoredPreset& changed,
                                     PresetChange& change, std::set<std::string>& taken) const {
  const NamedLook& original = catalog.Factory().at(id).preset;
  if (!SamePreset(original, changed.preset)) {
    std::string name = changed.preset.name;
    if (Folded(name) == Folded(original.name)) name = FreshNameFor(name, taken);
    taken.insert(Folded(name));
    change.edits.push_back(NewPreset(name, changed.preset.look));
    if (store.IsMarked(Kind::Favorite, id))
      change.marks.push_back({Kind::Favorite, change.edits.back().id, true});
  }
  change.edits.push_back({id, changed.bytes, std::nullopt});
}

namespace {

Problem NoSuchPreset(std::string_view id) {
  return Filled(Translated("halvenor::Presets", "There is no preset \"%1\"."), {Printable(id)});
}

} // namespace

fs::path PresetLibrary::DefaultFolder() {
  const char* const asked = std::getenv("XDG_DATA_HOME");
  fs::path base(asked ? asked : "");
  if (!base.is_absolute()) base = fs::path(g_get_home_dir()) / ".local/share";
  return base / "halvenor/presets";
}

fs::path PresetLibrary::FactoryFolder(const fs::path& plugin) {
  return plugin / "Contents/Frameworks/CocoaBundle.bundle/Contents/Resources/Presets";
}

PresetLibrary::PresetLibrary(Folders folders) : impl_(std::make_unique<Impl>(std::move(folders))) {}
PresetLibrary::~PresetLibrary() = default;

std::vector<std::string> PresetLibrary::Load() {
  impl_->catalog.LoadFactory(impl_->factoryFolder);
  std::vector<std::string> lines = impl_->store.Load();
  for (const auto& [id, line] : impl_->catalog.Unreadable())
    lines.push_back(line);
  impl_->catalog.Show(impl_->store);
  return lines;
}

std::span<const Preset> PresetLibrary::Presets() const {
  return impl_->catalog.Presets();
}

const Preset* PresetLibrary::Find(std::string_view id) const {
  return impl_->catalog.Find(id);
}

const Preset* PresetLibrary::FindByName(std::string_view name) const {
  return impl_->catalog.FindByName(name);
}

const std::string* PresetLibrary::Unreadable(std::string_view name) const {
  const std::map<std::string, std::string>* const all[] = {&impl_->store.Unreadable(),
                                                           &impl_->catalog.Unreadable()};
  for (const std::string& id : {Folded(name), FreshIdFor(name, {})})
    for (const auto* const lines : all)
      if (const auto line = lines->find(id); line != lines->end()) return &line->second;
  return nullptr;
}

std::string PresetLibrary::FreshName(std::string_view wish) const {
  return FreshNameFor(wish, impl_->catalog.Names());
}

Problem PresetLibrary::Add(std::string_view name, const Settings& look, std::string* id) {
  std::string tidy(name);
  if (Problem problem = impl_->CheckName(tidy, "")) return problem;
  return impl_->Make({Filled(Translated("halvenor::Presets", "Add \"%1\""), {tidy}),
                      {impl_->NewPreset(tidy, look)},
                      {},
                      {}},
                     id);
}

Problem PresetLibrary::Duplicate(std::string_view id, std::string* newId) {
  const Preset* const preset = Find(id);
  if (!preset) return NoSuchPreset(id);
  const PresetEdit copy = impl_->NewPreset(FreshName(preset->name), preset->look);
  return impl_->Make(
      {Filled(Translated("halvenor::Presets", "Duplicate \"%1\""), {preset->name}), {copy}, {}, {}},
      newId);
}

Problem PresetLibrary::Rename(std::string_view id, std::string_view name) {
  const Preset* const preset = Find(id);
  if (!preset) return NoSuchPreset(id);
  std::string tidy(name);
  if (Problem problem = impl_->CheckName(tidy, id)) return problem;
  if (tidy == preset->name) return std::nullopt;
  return impl_->Rewrite(*preset,
                        Filled(Translated("halvenor::Presets", "Rename \"%1\""), {preset->name}),
                        tidy, preset->look);
}

Problem PresetLibrary::Replace(std::string_view id, const Settings& look) {
  const Preset* const preset = Find(id);
  if (!preset) return NoSuchPreset(id);
  if (SameLook(preset->look, TidyLook(look))) return std::nullopt;
  return impl_->Rewrite(*preset,
                        Filled(Translated("halvenor::Presets", "Change \"%1\""), {preset->name}),
                        preset->name, look);
}

Problem PresetLibrary::Remove(std::string_view id) {
  const Preset* const preset = Find(id);
  if (!preset) return NoSuchPreset(id);
  PresetChange change{
      Filled(Translated("halvenor::Presets", "Delete \"%1\""), {preset->name}), {}, {}, {}};
  if (const auto bytes = impl_->BytesOnDisk(preset->id))
    change.edits.push_back({preset->id, bytes, std::nullopt});
  if (impl_->catalog.Factory().contains(preset->id))
    change.marks.push_back({Kind::Hidden, preset->id, true});
  if (preset->favorite) change.marks.push_back({Kind::Favorite, preset->id, false});
  return impl_->Make(std::move(change));
}

Problem PresetLibrary::SetFavorite(std::string_view id, bool favorite) {
  const Preset* const preset = Find(id);
  if (!preset) return NoSuchPreset(id);
  if (preset->favorite == favorite) return std::nullopt;
  return impl_->Make({Filled(favorite ? Translated("halvenor::Presets", "Mark \"%1\"")
                                      : Translated("halvenor::Presets", "Unmark \"%1\""),
                             {preset->name}),
                      {},
                      {{Kind::Favorite, preset->id, favorite}},
                      {}});
}

Problem PresetLibrary::RestoreFactory() {
  PresetChange change{Translated("halvenor::Presets", "Restore Factory Presets"), {}, {}, {}};
  std::set<std::string> taken = impl_->catalog.Names();
  for (const auto& [id, original] : impl_->catalog.Factory()) {
    taken.insert(Folded(original.preset.name));
    if (impl_->store.IsMarked(Kind::Hidden, id)) change.marks.push_back({Kind::Hidden, id, false});
  }
  for (const auto& [id, own] : impl_->store.Files())
    if (impl_->catalog.Factory().contains(id)) impl_->RestoreOne(id, own, change, taken);
  if (change.edits.empty() && change.marks.empty()) return std::nullopt;
  return impl_->Make(std::move(change));
}

std::string PresetLibrary::UndoText() const {
  return impl_->done.empty() ? "" : impl_->done.back().text;
}

Problem PresetLibrary::Undo() {
  return impl_->Undo();
}

Problem PresetLibrary::Import(const fs::path& file, std::vector<std::string>* added) {
  std::string problem;
  const auto read = ReadPresetFile(file, problem);
  if (!read) return problem;
  PresetChange change{Filled(Translated("halvenor::Presets", "Import \"%1\""),
                             {Printable(file.filename().string())}),
                      {},
                      {},
                      {}};
  std::set<std::string> taken = impl_->catalog.Names();
  for (const NamedLook& preset : *read) {
    const std::string name = FreshNameFor(preset.name, taken);
    taken.insert(Folded(name));
    change.edits.push_back(impl_->NewPreset(name, preset.look));
  }
  if (Problem failed = impl_->Make(std::move(change))) return failed;
  if (added)
    for (const PresetEdit& edit : impl_->done.back().edits)
      added->push_back(edit.id);
  return std::nullopt;
}

Problem PresetLibrary::Export(const fs::path& file, std::span<const std::string> ids) const {
  std::vector<NamedLook> presets;
  for (const std::string& id : ids) {
    const Preset* const preset = Find(id);
    if (!preset) return NoSuchPreset(id);
    presets.push_back({preset->name, preset->look});
  }
  if (IsInside(file, impl_->store.Path()))
    return Filled(
        Translated("halvenor::Presets", "cannot write %1: it is the folder of the presets"),
        {Printable(file.string())});
  std::string problem;
  return WritePresetFile(file, presets, problem) ? std::nullopt : std::optional(problem);
}

} // namespace halvenor
