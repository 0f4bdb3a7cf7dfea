// Presets as texts, for the suites of the library and its files.
#pragma once

#include "presets/preset_library.h"
#include "protocol/settings.h"

#include <span>
#include <string>
#include <vector>

namespace halvenor {

inline Settings LookWith(float fade) {
  Settings look = DefaultSettings();
  look.fade = fade;
  return look;
}

inline std::string PresetText(const std::string& name, float fade = 0.5F) {
  const NamedLook preset{name, LookWith(fade)};
  return PrintPresets(std::span(&preset, 1));
}

/// All that is to be seen of the presets, one a line.
inline std::vector<std::string> Seen(const PresetLibrary& library) {
  std::vector<std::string> lines;
  for (const Preset& preset : library.Presets())
    lines.push_back(preset.id + "|" + preset.name + "|" + std::to_string(preset.look.fade) +
                    (preset.favorite ? "|favorite" : "") +
                    (preset.origin == Preset::Origin::Factory          ? "|factory"
                     : preset.origin == Preset::Origin::ChangedFactory ? "|changed"
                                                                       : "") +
                    (preset.picture.empty() ? "" : "|picture"));
  return lines;
}

} // namespace halvenor
