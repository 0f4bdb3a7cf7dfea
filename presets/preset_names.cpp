#include "presets/preset_names.h"

#include "presets/key_file.h"
#include "presets/preset_file.h"

#include <glib.h>

#include <algorithm>
#include <memory>

namespace halvenor {
namespace {

constexpr std::size_t kLongestName = 80; // characters
constexpr std::size_t kLongestId = 100;
constexpr std::size_t kLongestMadeId = 60; // leaves room for a number

GlibText Valid(std::string_view text) {
  return GlibText(g_utf8_make_valid(std::string(text).c_str(), static_cast<gssize>(text.size())));
}

bool BreaksLine(gunichar c) {
  const GUnicodeType type = g_unichar_type(c);
  return type == G_UNICODE_CONTROL || type == G_UNICODE_LINE_SEPARATOR ||
         type == G_UNICODE_PARAGRAPH_SEPARATOR;
}

// The characters of `text`, what breaks lines replaced by blanks, up to `most` of them.
std::string OneLine(std::string_view text, std::size_t most) {
  const GlibText valid = Valid(text);
  std::string line;
  const char* at = valid.get();
  for (; *at && most > 0; --most) {
    const char* const next = g_utf8_next_char(at);
    if (BreaksLine(g_utf8_get_char(at)))
      line += ' ';
    else
      line.append(at, next);
    at = next;
  }
  return line;
}

void TrimSpace(std::string& text) {
  const char* begin = text.c_str();
  const char* end = begin + text.size();
  while (begin < end && g_unichar_isspace(g_utf8_get_char(begin)))
    begin = g_utf8_next_char(begin);
  while (begin < end && g_unichar_isspace(g_utf8_get_char(g_utf8_prev_char(end))))
    end = g_utf8_prev_char(end);
  text = std::string(begin, end);
}

bool HasInk(const std::string& text) {
  for (const char* at = text.c_str(); *at; at = g_utf8_next_char(at))
    if (g_unichar_isgraph(g_utf8_get_char(at))) return true;
  return false;
}

std::string CutTo(std::string_view text, std::size_t characters) {
  std::string cut = OneLine(text, characters);
  TrimSpace(cut);
  return cut;
}

// "Ember" for "Ember 3".
std::string_view WithoutNumber(std::string_view name) {
  const std::size_t digits = name.find_last_not_of("0123456789");
  const bool hasNumber = digits != name.npos && digits > 0 && digits + 1 < name.size() &&
                         name[digits] == ' ' && name.size() - digits < 8;
  return hasNumber ? name.substr(0, digits) : name;
}

} // namespace

std::string Folded(std::string_view text) {
  const GlibText normal(g_utf8_normalize(Valid(text).get(), -1, G_NORMALIZE_ALL_COMPOSE));
  const GlibText folded(g_utf8_casefold(normal.get(), -1));
  return folded.get();
}

std::string SortKey(std::string_view name) {
  return GlibText(g_utf8_collate_key_for_filename(Folded(name).c_str(), -1)).get();
}

std::string TidyPresetName(std::string_view name) {
  std::string tidy = OneLine(name, name.size());
  TrimSpace(tidy);
  tidy = CutTo(tidy, kLongestName);
  return HasInk(tidy) ? tidy : "";
}

std::string FreshNameFor(std::string_view wish, const std::set<std::string>& taken) {
  std::string name = TidyPresetName(wish);
  if (name.empty()) name = "Preset";
  if (!taken.contains(Folded(name))) return name;
  const std::string base(WithoutNumber(name));
  std::string folded;
  std::size_t room = 0; // for the base beside the number
  for (int number = 2;; ++number) {
    const std::string end = std::string(" ").append(std::to_string(number));
    if (room != kLongestName - end.size()) {
      room = kLongestName - end.size();
      name = CutTo(base, room);
      folded = Folded(name);
    }
    if (!taken.contains(folded + end)) return name + end;
  }
}

bool IsPresetId(std::string_view id) {
  return !id.empty() && id.size() <= kLongestId && std::all_of(id.begin(), id.end(), [](char c) {
    return g_ascii_islower(c) || g_ascii_isdigit(c) || c == '-' || c == '_';
  });
}

std::string FreshIdFor(std::string_view name, const std::set<std::string>& taken) {
  const GlibText ascii(g_str_to_ascii(Valid(name).get(), "C"));
  std::string base;
  for (const char* at = ascii.get(); *at && base.size() < kLongestMadeId; ++at) {
    if (g_ascii_isalnum(*at))
      base += g_ascii_tolower(*at);
    else if (!base.empty() && base.back() != '-')
      base += '-';
  }
  while (!base.empty() && base.back() == '-')
    base.pop_back();
  if (base.empty()) base = "preset";
  std::string id = base;
  for (int number = 2; taken.contains(id); ++number)
    id = base + "-" + std::to_string(number);
  return id;
}

} // namespace halvenor
