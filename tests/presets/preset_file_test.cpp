#include "presets/look.h"
#include "presets/preset_file.h"
#include "tests/presets/preset_texts.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/small_disk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr char kHead[] = "[Halvenor Presets]\nformat=1\n[Preset 1]\n";

TEST(PresetFile, TextThatIsTaken) {
  const struct {
    std::string text;
    const char* name;
    float fade;
  } cases[] = {
      {std::string(kHead) + "name=A\nfade=0.5\n", "A", 0.5F},
      {"\xEF\xBB\xBF" + std::string(kHead) + "name=A\nfade=0.5\n", "A", 0.5F},
      {"[Halvenor Presets]\r\nformat = 1\r\n\r\n[Preset 1]\r\nname=A\r\nfade = 0.5 \r\n", "A",
       0.5F},
      {std::string(kHead) + "name=A\n", "A", DefaultSettings().fade},
      {std::string(kHead) + "# a word\nname=A\nfade=0.25\nsparkle=9\n[Other]\nfade=x\n", "A",
       0.25F},
      {std::string(kHead) + "name=  Été\\nde feu \nfade=1e-1", "Été de feu", 0.1F},
  };
  for (const auto& [text, name, fade] : cases) {
    std::string problem;
    const auto presets = ParsePresets(text, problem);
    ASSERT_TRUE(presets && presets->size() == 1) << text << problem;
    EXPECT_EQ(presets->front().name, name);
    EXPECT_EQ(presets->front().look.fade, fade) << text;
  }
}

TEST(PresetFile, TextThatIsRefused) {
  const std::string head = kHead;
  const struct {
    std::string text;
    const char* reason;
  } cases[] = {
      {"", "empty"},
      {"Hello.", "not a preset file"},
      {"[Settings]\nformat=1\n", "not a preset file"},
      {"[Halvenor Presets]\nformat=\n[Preset 1]\nname=A\n", "not a preset file"},
      {"[Halvenor Presets]\nformat=0\n[Preset 1]\nname=A\n", "not a preset file"},
      {"[Halvenor Presets]\nformat=1x\n[Preset 1]\nname=A\n", "not a preset file"},
      {"[Halvenor Presets]\nformat=2\n[Preset 1]\nname=A\n", "newer format (2"},
      {"[Halvenor Presets]\nformat=99999999999999\n", "newer format"},
      {"[Halvenor Presets]\nformat=1\n", "contains no preset"},
      {head + "fade=0.5\n", "without a name"},
      {head + "name= \\n \n", "without a name"},
      {head + "name=A\nfade=nan\n", "fade takes"},
      {head + "name=A\nfade=inf\n", "fade takes"},
      {head + "name=A\nfade=0,5\n", "fade takes"},
      {head + "name=A\nfade=\n", "fade takes"},
      {head + "name=A\nzoomRotation=361\n", "zoomRotation takes"},
      {head + "name=A\ninnerColor=1,1\n", "innerColor takes"},
      {head + "name=A\nglow=perhaps\n", "glow takes"},
      {head + "name=A\nfrequencyScale=4\n", "frequencyScale takes"},
      {head + "name=A\nfade=0.1\nfade=0.2\n", "fade twice"},
      {head + "name=A\n" + head + "name=B\n", "twice"}, // two files in one
      {head + "name=\xFF\xFE\n", "not text"},
      {head + "name=A" + std::string(1, '\0') + "\n", "not text"},
      {head + "name=A\nfade=" + std::string(100'000, '9') + "\n", "fade takes"},
  };
  for (const auto& [text, reason] : cases) {
    std::string problem;
    EXPECT_FALSE(ParsePresets(text, problem)) << text.substr(0, 200);
    EXPECT_THAT(problem.substr(0, 400), HasSubstr(reason)) << text.substr(0, 200);
  }
}

TEST(PresetFile, RoundTripOfManyInOneFile) {
  const ScratchFolder folder;
  std::vector<NamedLook> presets{{"Ember \\ Tide #1 = [x]; ✨", LookWith(0.1F)}, {" B\n", {}}};
  presets[0].look.innerColor = {0.1F, 1.0F / 3.0F, 0};
  presets[0].look.frequencyScale = 3;
  presets[1].look.numLines = 1e9F; // keys and stored blocks may hold more than a field takes
  std::string problem;
  ASSERT_TRUE(WritePresetFile(folder / "x", presets, problem)) << problem;
  const auto read = ReadPresetFile(folder / "x", problem);
  ASSERT_TRUE(read && read->size() == 2) << problem;
  EXPECT_EQ(read->at(0).name, presets[0].name);
  EXPECT_TRUE(SameLook(read->at(0).look, presets[0].look));
  EXPECT_THAT(ReadText(folder / "x"), HasSubstr("\nfrequencyScale=Blended\n"));
  EXPECT_EQ(read->at(1).name, "B");
  EXPECT_EQ(read->at(1).look.numLines, 100);
}

TEST(PresetFile, NamesAreOneTidyLine) {
  std::string longName;
  std::string cutName;
  for (int i = 0; i < 90; ++i) {
    longName += "é";
    if (i < 80) cutName += "é";
  }
  const struct {
    std::string name;
    std::string tidy;
  } cases[] = {{" a\tb\r\nc ", "a b  c"}, {"\u3000x\u3000", "x"}, {"\n \u2028", ""},   {"", ""},
               {longName, cutName},       {"a\xFFz", "a\uFFFDz"}, {"\x1B[31m", "[31m"}};
  for (const auto& [name, tidy] : cases)
    EXPECT_EQ(TidyPresetName(name), tidy);
}

// Whatever lies under the name, the old file stays until the new one is whole.
TEST(PresetFile, WhatCannotBeWrittenOrReadIsToldInOneLine) {
  const ScratchFolder folder;
  const std::vector<NamedLook> presets(3, {"A", LookWith(0.5F)});
  WriteText(folder / "old", "old");
  fs::create_symlink("old", folder / "link");
  fs::create_directory(folder / "folder");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0644), 0);
  for (const char* const name : {"folder", "pipe", "missing/x"}) {
    std::string problem;
    EXPECT_FALSE(WritePresetFile(folder / name, presets, problem)) << name;
    EXPECT_THAT(problem, HasSubstr(name));
    EXPECT_FALSE(ReadPresetFile(folder / name, problem)) << name;
    EXPECT_THAT(problem, HasSubstr(name));
  }
  std::string problem;
  EXPECT_FALSE(WritePresetFile(folder / "old", {}, problem));
  {
    const SmallDisk disk(100);
    EXPECT_FALSE(WritePresetFile(folder / "old", presets, problem));
  }
  EXPECT_EQ(ReadText(folder / "old"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder / ""), fs::directory_iterator()), 4)
      << "something is left behind";
  EXPECT_TRUE(WritePresetFile(folder / "link", presets, problem)) << problem;
  EXPECT_TRUE(fs::is_symlink(folder / "link")) << "a link keeps pointing where it points";
  EXPECT_NE(ReadText(folder / "old"), "old");
  EXPECT_TRUE(fs::is_fifo(folder / "pipe")) << "nor must a device be replaced";
}

} // namespace
} // namespace halvenor
