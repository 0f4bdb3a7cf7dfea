// What a person sees of the factory's presets and their own.
#pragma once

#include "presets/preset_library.h"
#include "presets/preset_store.h"

#include <filesystem>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {

class PresetCatalog {
public:
  /// Reads the factory presets and their pictures anew.
  void LoadFactory(const std::filesystem::path& folder);
  /// Puts the factory presets and those of `store` together.
  void Show(const PresetStore& store);

  [[nodiscard]] std::span<const Preset> Presets() const { return presets_; }
  /// The names of `Presets`, folded.
  [[nodiscard]] const std::set<std::string>& Names() const { return names_; }
  [[nodiscard]] const Preset* Find(std::string_view id) const;
  [[nodiscard]] const Preset* FindByName(std::string_view name) const;

  [[nodiscard]] const StoredPresets& Factory() const { return factory_; }
  [[nodiscard]] const std::set<std::string>& FactoryIds() const { return factoryIds_; }
  /// One line each for the factory's files that could not be read, by what their ids would be.
  [[nodiscard]] const std::map<std::string, std::string>& Unreadable() const { return unreadable_; }

private:
  void ShowOne(const PresetStore& store, const std::string& id, const NamedLook& preset);

  StoredPresets factory_;
  std::set<std::string> factoryIds_;
  std::map<std::string, std::string> unreadable_;
  std::map<std::string, std::filesystem::path> pictures_; ///< by id
  std::vector<Preset> presets_;
  std::set<std::string> names_;
};

/// Whether two presets are one under the same name.
bool SamePreset(const NamedLook& one, const NamedLook& other);

} // namespace halvenor
