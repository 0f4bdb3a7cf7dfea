#include "config/preset_file.h"

#include "config/file_bytes.h"
#include "config/look.h"
#include "config/preset_names.h"

#include <glib.h>

#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <memory>
#include <set>
#include <system_error>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

constexpr char kHead[] = "Halvenor Presets";
constexpr std::string_view kPresetGroup = "Preset ";
constexpr int kFormat = 1;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct Freed {
  void operator()(GKeyFile* file) const { g_key_file_unref(file); }
  void operator()(GError* error) const { g_error_free(error); }
  void operator()(char* text) const { g_free(text); }
  void operator()(char** texts) const { g_strfreev(texts); }
};
using KeyFile = std::unique_ptr<GKeyFile, Freed>;
using Text = std::unique_ptr<char, Freed>;
using Texts = std::unique_ptr<char*, Freed>;

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n\v\f";
  const std::size_t begin = text.find_first_not_of(kSpace);
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(kSpace) - begin + 1);
}

// GKeyFile lets the last of two win, and one of two presets would be gone.
std::string FindDuplicate(std::string_view text) {
  std::set<std::string_view> groups;
  std::set<std::string_view> keys;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = Trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line[0] == '#') continue;
    const bool isGroup = line[0] == '[';
    const std::string_view name = isGroup ? line : Trimmed(line.substr(0, line.find('=')));
    if (isGroup) keys.clear();
    if (!(isGroup ? groups : keys).insert(name).second)
      return "has " + std::string(name) + " twice";
  }
  return "";
}

std::string CheckHead(GKeyFile* file) {
  const Text format(g_key_file_get_value(file, kHead, "format", nullptr));
  const std::string_view text = Trimmed(format ? format.get() : "");
  int number = 0;
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (text.empty() || end != text.data() + text.size() || number < 1)
    return failed == std::errc::result_out_of_range ? "is of a format to come"
                                                    : "is no preset file";
  if (number > kFormat)
    return "is of a format to come (" + std::to_string(number) + "; this version reads " +
           std::to_string(kFormat) + ")";
  return "";
}

std::optional<NamedLook> ReadPreset(GKeyFile* file, const char* group, std::string& problem) {
  NamedLook preset;
  const Text name(g_key_file_get_string(file, group, "name", nullptr));
  preset.name = TidyPresetName(name ? name.get() : "");
  if (preset.name.empty()) {
    problem = "has a preset without a name, [" + std::string(group) + "]";
    return std::nullopt;
  }
  for (const SettingField& field : SettingFields()) {
    if (!field.look) continue;
    const Text value(g_key_file_get_value(file, group, std::string(field.name).c_str(), nullptr));
    if (!value) continue;
    if (const auto wrong = SetFromText(preset.look, field, Trimmed(value.get()))) {
      problem = "has a bad value in \"" + preset.name + "\": " + *wrong;
      return std::nullopt;
    }
  }
  return preset;
}

std::string NameForMessages(const fs::path& file) {
  return Printable(file.string());
}

} // namespace

std::optional<std::vector<NamedLook>> ParsePresets(std::string_view text, std::string& problem) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  const KeyFile file(g_key_file_new());
  if (text.empty() || !g_utf8_validate_len(text.data(), text.size(), nullptr)) {
    problem = std::string("is no preset file: it is ") + (text.empty() ? "empty" : "not text");
    return std::nullopt;
  }
  GError* raw = nullptr;
  if (text.empty() ||
      !g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, &raw)) {
    const std::unique_ptr<GError, Freed> error(raw);
    problem = "is no preset file: " + std::string(error->message);
    return std::nullopt;
  }
  problem = CheckHead(file.get());
  if (problem.empty()) problem = FindDuplicate(text);
  if (!problem.empty()) return std::nullopt;

  std::vector<NamedLook> presets;
  const Texts groups(g_key_file_get_groups(file.get(), nullptr));
  for (char** group = groups.get(); *group; ++group) {
    if (!std::string_view(*group).starts_with(kPresetGroup)) continue;
    auto preset = ReadPreset(file.get(), *group, problem);
    if (!preset) return std::nullopt;
    presets.push_back(std::move(*preset));
  }
  if (presets.empty()) {
    problem = "holds no preset";
    return std::nullopt;
  }
  return presets;
}

std::string PrintPresets(std::span<const NamedLook> presets) {
  const KeyFile file(g_key_file_new());
  g_key_file_set_integer(file.get(), kHead, "format", kFormat);
  int number = 0;
  for (const NamedLook& preset : presets) {
    const std::string group = std::string(kPresetGroup) + std::to_string(++number);
    g_key_file_set_string(file.get(), group.c_str(), "name", TidyPresetName(preset.name).c_str());
    const Settings look = TidyLook(preset.look);
    for (const SettingField& field : SettingFields())
      if (field.look)
        g_key_file_set_value(file.get(), group.c_str(), std::string(field.name).c_str(),
                             ToText(look, field).c_str());
  }
  gsize size = 0;
  const Text text(g_key_file_to_data(file.get(), &size, nullptr));
  return {text.get(), size};
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
    problem = "cannot write " + NameForMessages(file) + ": " + Printable(reason);
    return false;
  };
  if (presets.empty()) return fail("there is no preset to write");
  std::error_code failed;
  const fs::file_status kind = fs::status(file, failed);
  if (fs::is_directory(kind)) return fail(ErrorText(EISDIR));
  // A device must not be replaced by a file.
  if (fs::exists(kind) && !fs::is_regular_file(kind)) return fail("it is no ordinary file");
  // A link keeps pointing where it points: what it points at is replaced.
  const fs::path target = fs::exists(kind) ? fs::canonical(file, failed) : file;

  const std::string text = PrintPresets(presets);
  GError* raw = nullptr;
  constexpr auto kWholeOrNothing = static_cast<GFileSetContentsFlags>(
      G_FILE_SET_CONTENTS_CONSISTENT | G_FILE_SET_CONTENTS_DURABLE);
  if (g_file_set_contents_full(target.c_str(), text.data(), static_cast<gssize>(text.size()),
                               kWholeOrNothing, 0666, &raw))
    return true;
  const std::unique_ptr<GError, Freed> error(raw);
  return fail(error->message);
}

} // namespace halvenor
