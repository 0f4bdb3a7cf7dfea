#include "presets/preset_file.h"

#include "files/file_bytes.h"
#include "files/pending_file.h"
#include "files/printable.h"
#include "files/translated.h"
#include "presets/key_file.h"
#include "presets/look.h"
#include "presets/preset_names.h"

#include <glib.h>

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <set>
#include <system_error>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

constexpr char kPresetsHead[] = "Halvenor Presets";
constexpr std::string_view kPresetGroup = "Preset ";

std::optional<NamedLook> ReadPreset(GKeyFile* file, const char* group, std::string& problem) {
  NamedLook preset;
  const GlibText name(g_key_file_get_string(file, group, "name", nullptr));
  preset.name = TidyPresetName(name ? name.get() : "");
  if (preset.name.empty()) {
    problem = Filled(Translated("halvenor::Presets", "has a preset without a name, [%1]"), {group});
    return std::nullopt;
  }
  for (const SettingField& field : SettingFields()) {
    if (!field.look) continue;
    const GlibText value(
        g_key_file_get_value(file, group, std::string(field.name).c_str(), nullptr));
    if (!value) continue;
    if (const auto wrong = SetFromText(preset.look, field, Trimmed(value.get()))) {
      problem = Filled(Translated("halvenor::Presets", "has a bad value in \"%1\": %2"),
                       {preset.name, *wrong});
      return std::nullopt;
    }
  }
  return preset;
}

// The name of a choice rather than its number. `look` is tidy.
std::string ReadableText(const Settings& look, const SettingField& field) {
  std::string text = ToText(look, field);
  if (field.choices.empty()) return text;
  return std::string(field.choices[std::stoul(text) - static_cast<std::size_t>(field.minimum)]);
}

std::string NameForMessages(const fs::path& file) {
  return Printable(file.string());
}

} // namespace

std::optional<std::vector<NamedLook>> ParsePresets(std::string_view text, std::string& problem) {
  const GlibKeyFile file = ParseKeyFile(text, kPresetsHead, problem);
  if (!file) return std::nullopt;
  std::vector<NamedLook> presets;
  const GlibTexts groups(g_key_file_get_groups(file.get(), nullptr));
  for (char** group = groups.get(); *group; ++group) {
    if (!std::string_view(*group).starts_with(kPresetGroup)) continue;
    auto preset = ReadPreset(file.get(), *group, problem);
    if (!preset) return std::nullopt;
    presets.push_back(std::move(*preset));
  }
  if (presets.empty()) {
    problem = Translated("halvenor::Presets", "contains no preset");
    return std::nullopt;
  }
  return presets;
}

std::string PrintPresets(std::span<const NamedLook> presets) {
  const GlibKeyFile file = NewKeyFile(kPresetsHead);
  int number = 0;
  for (const NamedLook& preset : presets) {
    const std::string group = std::string(kPresetGroup) + std::to_string(++number);
    g_key_file_set_string(file.get(), group.c_str(), "name", TidyPresetName(preset.name).c_str());
    const Settings look = TidyLook(preset.look);
    for (const SettingField& field : SettingFields())
      if (field.look)
        g_key_file_set_value(file.get(), group.c_str(), std::string(field.name).c_str(),
                             ReadableText(look, field).c_str());
  }
  return TextOf(file.get());
}

std::optional<std::vector<NamedLook>> ReadPresetFile(const fs::path& file, std::string& problem) {
  const FileBytes read = ReadFileBytes(AT_FDCWD, file.string(), Links::Follow);
  if (!read.bytes) {
    problem =
        NameForMessages(file) + ": " + (read.reason.empty() ? ErrorText(ENOENT) : read.reason);
    return std::nullopt;
  }
  std::string reason;
  auto presets = ParsePresets(*read.bytes, reason);
  if (!presets) problem = NameForMessages(file) + ": " + Printable(reason);
  return presets;
}

bool WritePresetFile(const fs::path& file, std::span<const NamedLook> presets,
                     std::string& problem) {
  const auto fail = [&](const std::string& reason) {
    problem = Filled(Translated("halvenor::Presets", "cannot write %1: %2"),
                     {NameForMessages(file), Printable(reason)});
    return false;
  };
  if (presets.empty()) return fail(Translated("halvenor::Presets", "there is no preset to write"));
  std::error_code none;
  const fs::file_status kind = fs::status(file, none);
  if (fs::exists(kind) && !fs::is_directory(kind) && !fs::is_regular_file(kind))
    return fail(Translated("halvenor::Presets", "it is not a regular file"));
  PendingFile pending = PendingFile::Create(file);
  const std::string text = PrintPresets(presets);
  const bool written = pending && pending.Write(std::as_bytes(std::span(text))) && pending.Commit();
  if (!written) problem = pending.Problem();
  return written;
}

} // namespace halvenor
