// Any bytes as a preset file, as the file of marks, and as a name.
#include "files/printable.h"
#include "presets/look.h"
#include "presets/preset_file.h"
#include "presets/preset_marks.h"
#include "presets/preset_names.h"

#include <cstdint>
#include <cstdlib>

using namespace halvenor;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void ReadAsPresets(std::string_view text) {
  std::string problem;
  const auto presets = ParsePresets(text, problem);
  Require(presets.has_value() == problem.empty());
  if (!presets) return;
  const auto again = ParsePresets(PrintPresets(*presets), problem);
  Require(again && again->size() == presets->size());
  for (std::size_t i = 0; i < presets->size(); ++i) {
    Require(again->at(i).name == presets->at(i).name);
    Require(SameLook(again->at(i).look, presets->at(i).look));
    Require(SameLook(TidyLook(presets->at(i).look), presets->at(i).look));
  }
}

void ReadAsMarks(std::string_view text) {
  std::string problem;
  const auto marks = ParsePresetMarks(text, problem);
  Require(marks.has_value() == problem.empty());
  if (marks) Require(ParsePresetMarks(PrintPresetMarks(*marks), problem).has_value());
}

void ReadAsName(std::string_view text) {
  const std::string name = TidyPresetName(text);
  Require(TidyPresetName(name) == name);
  const std::string id = FreshIdFor(text, {});
  Require(IsPresetId(id) && FreshIdFor(text, {id}) != id);
  const std::string fresh = FreshNameFor(text, {Folded(name)});
  Require(Folded(fresh) != Folded(name) && TidyPresetName(fresh) == fresh);
  Require(Printable(text).find('\n') == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  ReadAsPresets(text);
  ReadAsMarks(text);
  ReadAsName(text);
  return 0;
}
