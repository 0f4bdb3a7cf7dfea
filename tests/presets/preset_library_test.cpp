#include "presets/look.h"
#include "presets/preset_library.h"
#include "tests/presets/preset_texts.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Problem = PresetLibrary::Problem;
constexpr auto kDone = std::nullopt;

// Two factory presets, one with a picture, and one of the person's own.
class PresetLibraryTest : public testing::Test {
protected:
  PresetLibraryTest() {
    WriteText(folder_ / "factory/ember-tide.preset", PresetText("Ember Tide", 0.1F));
    WriteText(folder_ / "factory/ember-tide.png", "PNG");
    WriteText(folder_ / "factory/lone-wire.preset", PresetText("Lone Wire", 0.2F));
    WriteText(folder_ / "own/mine.preset", PresetText("Mine", 0.3F));
    EXPECT_THAT(library_.Load(), IsEmpty());
  }

  [[nodiscard]] PresetLibrary::Folders Folders() const {
    return {folder_ / "own", folder_ / "factory"};
  }
  /// What another program sees.
  std::vector<std::string> SeenElsewhere() {
    PresetLibrary other(Folders());
    EXPECT_THAT(other.Load(), IsEmpty());
    return Seen(other);
  }

  ScratchFolder folder_;
  PresetLibrary library_{Folders()};
};

const std::vector<std::string> kAtFirst{"ember-tide|Ember Tide|0.100000|factory|picture",
                                        "lone-wire|Lone Wire|0.200000|factory",
                                        "mine|Mine|0.300000"};

struct Operation {
  const char* undoText;
  std::function<Problem(PresetLibrary&)> perform;
  std::vector<std::string> seen; ///< afterwards, from the first state on
};

std::vector<Operation> Operations(const fs::path& several) {
  const std::string ember = kAtFirst[0];
  const std::string wire = kAtFirst[1];
  const std::string mine = kAtFirst[2];
  return {
      {"Add \"Neu\"",
       [](auto& l) { return l.Add(" Neu\n", LookWith(0.4F)); },
       {ember, wire, mine, "neu|Neu|0.400000"}},
      {"Duplicate \"Ember Tide\"",
       [](auto& l) { return l.Duplicate("ember-tide"); },
       {ember, "ember-tide-2|Ember Tide 2|0.100000|picture", wire, mine}},
      {"Rename \"Mine\"",
       [](auto& l) { return l.Rename("mine", "A first"); },
       {"mine|A first|0.300000", ember, wire}},
      {"Rename \"Ember Tide\"",
       [](auto& l) { return l.Rename("ember-tide", "EMBER TIDE"); },
       {"ember-tide|EMBER TIDE|0.100000|changed|picture", wire, mine}},
      {"Change \"Mine\"",
       [](auto& l) { return l.Replace("mine", LookWith(0.9F)); },
       {ember, wire, "mine|Mine|0.900000"}},
      {"Change \"Ember Tide\"",
       [](auto& l) { return l.Replace("ember-tide", LookWith(0.9F)); },
       {"ember-tide|Ember Tide|0.900000|changed", wire, mine}},
      {"Delete \"Mine\"", [](auto& l) { return l.Remove("mine"); }, {ember, wire}},
      {"Delete \"Lone Wire\"", [](auto& l) { return l.Remove("lone-wire"); }, {ember, mine}},
      {"Mark \"Lone Wire\"",
       [](auto& l) { return l.SetFavorite("lone-wire", true); },
       {ember, "lone-wire|Lone Wire|0.200000|favorite|factory", mine}},
      {"Import \"several\"",
       [=](auto& l) { return l.Import(several); },
       {ember, wire, mine, "mine-2|MINE 2|0.700000", "mine-3|Mine 3|0.800000"}},
  };
}

TEST_F(PresetLibraryTest, EveryOperationAndItsUndoAreOnTheDisk) {
  const NamedLook two[] = {{"MINE", LookWith(0.7F)}, {"Mine", LookWith(0.8F)}};
  std::string problem;
  ASSERT_TRUE(WritePresetFile(folder_ / "several", two, problem));
  ASSERT_EQ(Seen(library_), kAtFirst);
  EXPECT_EQ(library_.UndoText(), "");
  EXPECT_NE(library_.Undo(), kDone);
  std::vector<std::vector<std::string>> history;
  for (const auto& [undoText, perform, seen] : Operations(folder_ / "several")) {
    SCOPED_TRACE(undoText);
    ASSERT_EQ(perform(library_), kDone);
    EXPECT_EQ(Seen(library_), seen);
    EXPECT_EQ(SeenElsewhere(), seen);
    EXPECT_EQ(library_.UndoText(), undoText);
    EXPECT_EQ(library_.Undo(), kDone);
    EXPECT_EQ(Seen(library_), kAtFirst);
    EXPECT_EQ(SeenElsewhere(), kAtFirst);
  }
  // One after the other, and all the way back.
  for (const Operation& operation : Operations(folder_ / "several")) {
    history.push_back(Seen(library_));
    const Problem failed = operation.perform(library_);
    if (failed) history.pop_back(); // on what an earlier one has removed or renamed
  }
  EXPECT_GE(history.size(), 9u);
  for (; !history.empty(); history.pop_back()) {
    const std::string text = library_.UndoText();
    EXPECT_EQ(library_.Undo(), kDone) << text;
    EXPECT_EQ(Seen(library_), history.back()) << text;
    EXPECT_EQ(SeenElsewhere(), history.back()) << text;
  }
}

TEST_F(PresetLibraryTest, UndoReachesAHundredChangesBack) {
  for (int i = 0; i < 101; ++i)
    ASSERT_EQ(library_.Replace("mine", LookWith(i % 2 ? 0.3F : 0.6F)), kDone);
  for (int i = 0; i < 100; ++i)
    ASSERT_EQ(library_.Undo(), kDone) << i;
  EXPECT_EQ(library_.UndoText(), "");
  EXPECT_EQ(library_.Find("mine")->look.fade, 0.6F);
}

TEST_F(PresetLibraryTest, FactoryPresetsComeBackAndNothingIsLost) {
  ASSERT_EQ(library_.SetFavorite("ember-tide", true), kDone);
  ASSERT_EQ(library_.Replace("ember-tide", LookWith(0.9F)), kDone);
  ASSERT_EQ(library_.Remove("lone-wire"), kDone);
  ASSERT_EQ(library_.Add("lone wire", LookWith(0.5F)), kDone); // the name is free again
  const std::vector<std::string> before = Seen(library_);
  ASSERT_EQ(library_.RestoreFactory(), kDone);
  const std::vector<std::string> after{
      "ember-tide|Ember Tide|0.100000|favorite|factory|picture",
      "ember-tide-2|Ember Tide 2|0.900000|favorite", "lone-wire-2|lone wire|0.500000",
      "lone-wire|Lone Wire 2|0.200000|factory", "mine|Mine|0.300000"};
  EXPECT_EQ(Seen(library_), after);
  EXPECT_EQ(SeenElsewhere(), after);
  EXPECT_EQ(library_.Undo(), kDone);
  EXPECT_EQ(Seen(library_), before);
  EXPECT_EQ(SeenElsewhere(), before);
}

TEST_F(PresetLibraryTest, RefusalsChangeNothing) {
  const std::string ids[] = {"mine", "nobody"};
  WriteText(folder_ / "bad", "[Halvenor Presets]\nformat=7\n");
  const struct {
    const char* reason;
    Problem problem;
  } cases[] = {
      {"already a preset called \"Mine\"", library_.Add("mINE", DefaultSettings())},
      {"needs a name", library_.Add(" \n", DefaultSettings())},
      {"already a preset called \"Lone Wire\"", library_.Rename("mine", "LONE WIRE")},
      {"needs a name", library_.Rename("mine", "")},
      {"no preset \"nobody\"", library_.Rename("nobody", "x")},
      {"no preset \"nobody\"", library_.Replace("nobody", DefaultSettings())},
      {"no preset \"nobody\"", library_.Remove("nobody")},
      {"no preset \"nobody\"", library_.Duplicate("nobody")},
      {"no preset \"nobody\"", library_.SetFavorite("nobody", true)},
      {"no preset \"nobody\"", library_.Export(folder_ / "x", ids)},
      {"no preset", library_.Export(folder_ / "x", {})},
      {"folder of the presets",
       library_.Export(folder_ / "own/mine.preset", std::span(ids).first(1))},
      {"missing", library_.Import(folder_ / "missing")},
      {"newer format", library_.Import(folder_ / "bad")},
  };
  for (const auto& [reason, problem] : cases)
    EXPECT_THAT(problem.value_or(""), HasSubstr(reason));
  EXPECT_EQ(library_.UndoText(), "");
  EXPECT_EQ(SeenElsewhere(), kAtFirst);
  EXPECT_FALSE(fs::exists(folder_ / "x"));
}

TEST_F(PresetLibraryTest, NamesFindTheirPresets) {
  EXPECT_EQ(library_.FindByName("EMBER tide")->id, "ember-tide");
  EXPECT_EQ(library_.FindByName("lone-wire")->id, "lone-wire");
  EXPECT_EQ(library_.FindByName("Lone"), nullptr);
  EXPECT_EQ(library_.FreshName("mine"), "mine 2");
  EXPECT_EQ(library_.FreshName("  "), "Preset");
  const std::string longest(80, 'x');
  ASSERT_EQ(library_.Add(longest, DefaultSettings()), kDone);
  EXPECT_EQ(library_.FreshName(longest), std::string(78, 'x') + " 2");
  std::string id;
  ASSERT_EQ(library_.Add("Ärger über ✨", DefaultSettings(), &id), kDone);
  EXPECT_EQ(id, "arger-uber");
  ASSERT_EQ(library_.Add("✨", DefaultSettings(), &id), kDone);
  EXPECT_EQ(id, "preset");
  EXPECT_EQ(library_.FindByName("ÄRGER ÜBER ✨")->id, "arger-uber");
  ASSERT_EQ(library_.SetFavorite(id, true), kDone);
  ASSERT_EQ(library_.Remove(id), kDone);
  ASSERT_EQ(library_.Add("✨", DefaultSettings(), &id), kDone);
  EXPECT_FALSE(library_.Find(id)->favorite) << "another one's mark";
}

// Another program and this one change the same preset: neither loses its look.
TEST_F(PresetLibraryTest, KeepsWhatAnotherProgramWroteMeanwhile) {
  PresetLibrary other(Folders());
  other.Load();
  ASSERT_EQ(other.Replace("mine", LookWith(0.6F)), kDone);
  ASSERT_EQ(library_.Replace("mine", LookWith(0.9F)), kDone);
  ASSERT_EQ(other.Replace("ember-tide", LookWith(0.7F)), kDone);
  ASSERT_EQ(library_.Rename("ember-tide", "Embers"), kDone);
  EXPECT_EQ(Seen(library_), SeenElsewhere());
  EXPECT_THAT(Seen(library_), ElementsAre("ember-tide-2|Ember Tide|0.700000",
                                          "ember-tide|Embers|0.100000|changed|picture",
                                          "lone-wire|Lone Wire|0.200000|factory",
                                          "mine|Mine|0.900000", "mine-2|Mine 2|0.600000"));
  // Removed here, changed there: it is set aside as it was last.
  WriteText(folder_ / "own/mine.preset", PresetText("Mine", 0.8F));
  ASSERT_EQ(library_.Remove("mine"), kDone);
  EXPECT_EQ(ReadText(folder_ / "own/removed/mine.preset"), PresetText("Mine", 0.8F));
  // And when another has taken its place, it comes back beside it.
  WriteText(folder_ / "own/mine.preset", PresetText("Theirs", 0.4F));
  ASSERT_EQ(library_.Undo(), kDone);
  EXPECT_THAT(SeenElsewhere(), Contains("mine|Theirs|0.400000"));
  EXPECT_THAT(SeenElsewhere(), Contains("mine-3|Mine 2|0.800000"));
  ASSERT_EQ(library_.Undo(), kDone); // the renaming of the factory preset
  ASSERT_EQ(library_.Undo(), kDone) << "the change of what is called mine-3 now";
  EXPECT_THAT(SeenElsewhere(), Contains("mine-3|Mine 2|0.300000"));
  EXPECT_THAT(SeenElsewhere(), Contains("mine-3-2|Mine 3|0.800000")) << "which was not ours";
  EXPECT_THAT(SeenElsewhere(), Contains("mine|Theirs|0.400000"));
}

TEST_F(PresetLibraryTest, NamesThatDifferInCaseAloneAreToldApart) {
  WriteText(folder_ / "own/a.preset", PresetText("MINE"));
  WriteText(folder_ / "own/b.preset", PresetText("ember tide"));
  library_.Load();
  EXPECT_THAT(Seen(library_), ElementsAre("b|ember tide|0.500000",
                                          "ember-tide|Ember Tide 2|0.100000|factory|picture",
                                          "lone-wire|Lone Wire|0.200000|factory", "a|MINE|0.500000",
                                          "mine|Mine 2|0.300000"));
}

TEST_F(PresetLibraryTest, AThousandPresets) {
  for (int i = 1; i <= 1000; ++i)
    WriteText(folder_ / ("own/look-" + std::to_string(i) + ".preset"),
              PresetText("Look " + std::to_string(i)));
  EXPECT_THAT(library_.Load(), IsEmpty());
  ASSERT_EQ(library_.Presets().size(), 1003u);
  EXPECT_EQ(library_.Presets()[2 + 9].name, "Look 10") << "as people sort them";
  std::vector<std::string> ids;
  for (const Preset& preset : library_.Presets())
    ids.push_back(preset.id);
  ASSERT_EQ(library_.Export(folder_ / "all", ids), kDone);
  ASSERT_EQ(library_.Import(folder_ / "all"), kDone);
  EXPECT_EQ(SeenElsewhere().size(), 2006u);
  ASSERT_EQ(library_.Undo(), kDone);
  EXPECT_EQ(SeenElsewhere().size(), 1003u);

  PresetLibrary other({folder_ / "new/folder", {}});
  std::vector<std::string> added;
  ASSERT_EQ(other.Import(folder_ / "all", &added), kDone);
  EXPECT_EQ(added, ids);
  const std::vector<std::string> seen = Seen(other);
  ASSERT_EQ(seen.size(), 1003u);
  EXPECT_EQ(seen.front(), "ember-tide|Ember Tide|0.100000");
  EXPECT_EQ(seen.back(), "mine|Mine|0.300000");
}

} // namespace
} // namespace halvenor
