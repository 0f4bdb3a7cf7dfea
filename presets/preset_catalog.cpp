#include "presets/preset_catalog.h"

#include "presets/look.h"
#include "presets/preset_names.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace halvenor {

namespace fs = std::filesystem;

bool SamePreset(const NamedLook& one, const NamedLook& other) {
  return one.name == other.name && SameLook(one.look, other.look);
}

void PresetCatalog::LoadFactory(const fs::path& folder) {
  factory_.clear();
  factoryIds_.clear();
  unreadable_.clear();
  pictures_.clear();
  if (folder.empty()) return;
  factory_ = ReadPresetFolder(folder, unreadable_);
  for (const auto& [id, preset] : factory_) {
    factoryIds_.insert(id);
    std::error_code none;
    fs::path picture = folder / (id + ".png");
    if (fs::is_regular_file(picture, none)) pictures_[id] = std::move(picture);
  }
}

void PresetCatalog::ShowOne(const PresetStore& store, const std::string& id,
                            const NamedLook& preset) {
  // Files may have been given the same name by hand, or by two programs at once.
  Preset shown{id, FreshNameFor(preset.name, names_), preset.look, false, Preset::Origin::Own, {}};
  names_.insert(Folded(shown.name));
  shown.favorite = store.IsMarked(PresetMark::Kind::Favorite, id);
  if (const auto original = factory_.find(id); original != factory_.end()) {
    const bool isSame = SamePreset(original->second.preset, preset);
    shown.origin = isSame ? Preset::Origin::Factory : Preset::Origin::ChangedFactory;
  }
  for (const auto& [pictured, file] : pictures_)
    if (SameLook(factory_.at(pictured).preset.look, preset.look)) shown.picture = file;
  presets_.push_back(std::move(shown));
}

// The user's own presets keep their names; factory presets get a number when they clash.
void PresetCatalog::Show(const PresetStore& store) {
  presets_.clear();
  names_.clear();
  for (const auto& [id, own] : store.Files())
    ShowOne(store, id, own.preset);
  for (const auto& [id, original] : factory_)
    if (!store.Files().contains(id) && !store.IsMarked(PresetMark::Kind::Hidden, id))
      ShowOne(store, id, original.preset);

  std::map<std::string, std::string> keys;
  for (const Preset& preset : presets_)
    keys[preset.id] = SortKey(preset.name);
  std::sort(presets_.begin(), presets_.end(),
            [&](const Preset& a, const Preset& b) { return keys[a.id] < keys[b.id]; });
}

const Preset* PresetCatalog::Find(std::string_view id) const {
  const auto found = std::find_if(presets_.begin(), presets_.end(),
                                  [&](const Preset& preset) { return preset.id == id; });
  return found == presets_.end() ? nullptr : &*found;
}

const Preset* PresetCatalog::FindByName(std::string_view name) const {
  const std::string wanted = Folded(TidyPresetName(name));
  for (const Preset& preset : presets_)
    if (Folded(preset.name) == wanted) return &preset;
  return Find(name);
}

} // namespace halvenor
