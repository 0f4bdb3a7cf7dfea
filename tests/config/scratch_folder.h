// A folder of a test's own, and the files in it.
#pragma once

#include "config/preset_library.h"
#include "protocol/settings.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace halvenor {

class ScratchFolder {
public:
  ScratchFolder() {
    std::string pattern = std::filesystem::temp_directory_path() / "presets-XXXXXX";
    path_ = mkdtemp(pattern.data());
    std::filesystem::permissions(path_, std::filesystem::perms(0755));
  }
  ~ScratchFolder() { std::filesystem::remove_all(path_); }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
    return path_ / name;
  }

private:
  std::filesystem::path path_;
};

inline void WriteText(const std::filesystem::path& file, const std::string& text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

inline std::string ReadText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

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
                    (preset.favourite ? "|favourite" : "") +
                    (preset.origin == Preset::Origin::Factory          ? "|factory"
                     : preset.origin == Preset::Origin::ChangedFactory ? "|changed"
                                                                       : "") +
                    (preset.picture.empty() ? "" : "|picture"));
  return lines;
}

} // namespace halvenor
