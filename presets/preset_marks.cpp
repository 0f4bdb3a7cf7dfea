#include "presets/preset_marks.h"

#include "presets/key_file.h"

#include <vector>

namespace halvenor {
namespace {

constexpr char kMarksHead[] = "Halvenor Preset Marks";

struct MarkKey {
  PresetMark::Kind kind;
  const char* key;
};
constexpr MarkKey kMarkKeys[] = {{PresetMark::Kind::Favorite, "favourites"},
                                 {PresetMark::Kind::Hidden, "removed"}};

} // namespace

void Apply(const PresetMark& mark, PresetMarks& marks) {
  if (mark.on)
    marks[mark.kind].insert(mark.id);
  else
    marks[mark.kind].erase(mark.id);
}

std::optional<PresetMarks> ParsePresetMarks(std::string_view text, std::string& problem) {
  const GlibKeyFile file = ParseKeyFile(text, kMarksHead, problem);
  if (!file) return std::nullopt;
  PresetMarks marks;
  for (const auto& [kind, key] : kMarkKeys) {
    gsize count = 0;
    const GlibTexts ids(g_key_file_get_string_list(file.get(), kMarksHead, key, &count, nullptr));
    for (gsize i = 0; i < count; ++i)
      marks[kind].insert(ids.get()[i]);
  }
  return marks;
}

std::string PrintPresetMarks(const PresetMarks& marks) {
  const GlibKeyFile file = NewKeyFile(kMarksHead);
  for (const auto& [kind, key] : kMarkKeys) {
    std::vector<const char*> ids;
    if (const auto found = marks.find(kind); found != marks.end())
      for (const std::string& id : found->second)
        ids.push_back(id.c_str());
    g_key_file_set_string_list(file.get(), kMarksHead, key, ids.data(), ids.size());
  }
  return TextOf(file.get());
}

} // namespace halvenor
