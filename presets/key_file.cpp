#include "presets/key_file.h"

#include "files/translated.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <system_error>

namespace halvenor {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string Foreign() {
  return Translated("halvenor::Presets", "is not a preset file");
}

// GLib keeps only the last of two groups or keys with one name: a preset would be lost.
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
      return Filled(Translated("halvenor::Presets", "has %1 twice"), {std::string(name)});
  }
  return "";
}

std::string CheckHead(GKeyFile* file, const char* head) {
  const GlibText format(g_key_file_get_value(file, head, "format", nullptr));
  const std::string text(Trimmed(format ? format.get() : ""));
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, failed] = std::from_chars(text.data(), end, number);
  const bool isNumber = !text.empty() && stop == end && number >= 0;
  if (isNumber && (failed == std::errc::result_out_of_range || number > kPresetFormat))
    return Filled(
        Translated("halvenor::Presets", "is in a newer format (%1; this version reads %2)"),
        {text, std::to_string(kPresetFormat)});
  return isNumber && number == kPresetFormat ? "" : Foreign();
}

} // namespace

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n\v\f";
  const std::size_t begin = text.find_first_not_of(kSpace);
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(kSpace) - begin + 1);
}

GlibKeyFile ParseKeyFile(std::string_view text, const char* head, std::string& problem) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  if (text.empty() || !g_utf8_validate_len(text.data(), text.size(), nullptr)) {
    problem = text.empty()
                  ? Translated("halvenor::Presets", "is not a preset file: it is empty")
                  : Translated("halvenor::Presets", "is not a preset file: it is not text");
    return nullptr;
  }
  GlibKeyFile file(g_key_file_new());
  GError* raw = nullptr;
  if (!g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, &raw)) {
    problem = Foreign() + ": " + GlibError(raw)->message;
    return nullptr;
  }
  problem = CheckHead(file.get(), head);
  if (problem.empty()) problem = FindDuplicate(text);
  return problem.empty() ? std::move(file) : nullptr;
}

GlibKeyFile NewKeyFile(const char* head) {
  GlibKeyFile file(g_key_file_new());
  g_key_file_set_integer(file.get(), head, "format", kPresetFormat);
  return file;
}

std::string TextOf(GKeyFile* file) {
  gsize size = 0;
  const GlibText text(g_key_file_to_data(file, &size, nullptr));
  return {text.get(), size};
}

} // namespace halvenor
