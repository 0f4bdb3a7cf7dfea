// Bad files, full disks, killed programs and two at once: no preset is lost.
#include "presets/preset_library.h"
#include "tests/presets/preset_texts.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/small_disk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
constexpr auto kDone = std::nullopt;

/// Files that forbid reading forbid it to root, too.
class Unprivileged {
public:
  Unprivileged() { EXPECT_EQ(isRoot_ ? seteuid(65534) : 0, 0); }
  ~Unprivileged() { EXPECT_EQ(isRoot_ ? seteuid(0) : 0, 0); }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

private:
  const bool isRoot_ = geteuid() == 0;
};

TEST(PresetHardship, BadFilesAreNamedOnceAndLeftAlone) {
  const ScratchFolder folder;
  const fs::path own = folder / "own";
  const std::string good = PresetText("Good");
  const std::string future = "[Halvenor Presets]\nformat=2\n[Preset 1]\nname=A\n";
  WriteText(own / "good.preset", good);
  WriteText(own / "notes.txt", "no business of ours");
  WriteText(own / ".hidden.preset", "nor this");
  WriteText(own / "foreign.preset", "<xml/>");
  WriteText(own / "future.preset", future);
  WriteText(own / "several.preset", good + "[Preset 2]\nname=B\n");
  WriteText(own / "Capital Letters.preset", good);
  WriteText(own / "forbidden.preset", good);
  fs::permissions(own / "forbidden.preset", fs::perms::none);
  WriteText(own / "huge.preset", good);
  fs::resize_file(own / "huge.preset", 100'000'000);
  fs::create_symlink("good.preset", own / "link.preset");
  fs::create_symlink("nowhere", own / "dangling.preset");
  fs::create_directory(own / "folder.preset");
  ASSERT_EQ(mkfifo((own / "pipe.preset").c_str(), 0644), 0);
  const struct {
    std::string stem;
    const char* reason;
  } bad[] = {{"foreign", "not a preset file"},
             {"future", "newer format"},
             {"several", "several presets"},
             {"Capital Letters", "rename or import"},
             {"forbidden", "Permission denied"},
             {"huge", "larger than 16 MB"},
             {"dangling", "a link"},
             {"link", "a link"},
             {"folder", "a folder"},
             {"pipe", "not a regular file"}};

  PresetLibrary library({own, {}});
  std::vector<std::string> lines;
  {
    const Unprivileged nobody;
    lines = library.Load();
  }
  EXPECT_EQ(lines.size(), std::size(bad)) << testing::PrintToString(lines);
  EXPECT_EQ(library.Presets().size(), 1u);
  for (const auto& [stem, reason] : bad) {
    const std::string file = "/" + stem + ".preset: ";
    const auto line = std::find_if(lines.begin(), lines.end(), [&](const std::string& candidate) {
      return candidate.find(file) != candidate.npos;
    });
    ASSERT_NE(line, lines.end()) << stem;
    EXPECT_THAT(*line, HasSubstr(reason));
    std::string id;
    ASSERT_EQ(library.Add(stem, DefaultSettings(), &id), kDone) << stem;
    EXPECT_NE(id, stem) << "its name is not used again";
    EXPECT_NE(library.Unreadable(stem), nullptr);
  }
  EXPECT_EQ(library.Unreadable("good"), nullptr);
  EXPECT_EQ(ReadText(own / "future.preset"), future);
  EXPECT_TRUE(fs::is_symlink(own / "link.preset") && fs::is_fifo(own / "pipe.preset") &&
              fs::is_directory(own / "folder.preset"));
  EXPECT_EQ(fs::file_size(own / "huge.preset"), 100'000'000u);
  EXPECT_EQ(library.Load().size(), std::size(bad) - (geteuid() == 0 ? 1 : 0));
}

TEST(PresetHardship, ABrokenChangedPresetStaysAsItIs) {
  const ScratchFolder folder;
  WriteText(folder / "factory/ember.preset", PresetText("Ember"));
  WriteText(folder / "own/ember.preset", "what was left of it");
  PresetLibrary library({folder / "own", folder / "factory"});
  EXPECT_EQ(library.Load().size(), 1u);
  EXPECT_THAT(library.Replace("ember", LookWith(0.9F)).value_or(""), HasSubstr("ember.preset"));
  EXPECT_EQ(ReadText(folder / "own/ember.preset"), "what was left of it");
  EXPECT_EQ(library.Remove("ember"), kDone) << "which only hides the factory's";
  EXPECT_EQ(library.RestoreFactory(), kDone);
  EXPECT_EQ(ReadText(folder / "own/ember.preset"), "what was left of it");
  ASSERT_EQ(library.Presets().size(), 1u);
}

TEST(PresetHardship, AnUnreadableMarksFileIsSetAside) {
  for (const std::string content : {"rubbish", "[Halvenor Preset Marks]\nformat=9\n"}) {
    const ScratchFolder folder;
    WriteText(folder / "mine.preset", PresetText("Mine"));
    WriteText(folder / "marks.ini", content);
    PresetLibrary library({folder / "", {}});
    EXPECT_THAT(library.Load(), testing::ElementsAre(HasSubstr("marks.ini")));
    ASSERT_EQ(library.Add("Other", DefaultSettings()), kDone);
    EXPECT_EQ(ReadText(folder / "marks.ini"), content) << "not before it is needed";
    ASSERT_EQ(library.SetFavorite("mine", true), kDone);
    EXPECT_EQ(ReadText(folder / "removed/marks.ini"), content);
    EXPECT_THAT(library.Load(), IsEmpty());
    EXPECT_TRUE(library.Find("mine")->favorite);
  }
}

TEST(PresetHardship, AFullDiskAndAFolderThatForbidWritingChangeNothing) {
  const ScratchFolder folder;
  WriteText(folder / "factory/ember.preset", PresetText("Ember", 0.1F));
  WriteText(folder / "own/mine.preset", PresetText("Mine", 0.3F));
  WriteText(folder / "import", PresetText("Two") + "[Preset 2]\nname=B\n");
  PresetLibrary library({folder / "own", folder / "factory"});
  library.Load();
  ASSERT_EQ(library.Replace("ember", LookWith(0.9F)), kDone);
  const std::vector<std::string> before = Seen(library);
  const std::string ids[] = {"mine"};
  {
    const SmallDisk disk(20);
    const PresetLibrary::Problem problems[] = {
        library.Add("New", DefaultSettings()), library.Duplicate("mine"),
        library.Rename("mine", "Other"),       library.Replace("mine", LookWith(0.9F)),
        library.SetFavorite("mine", true),     library.RestoreFactory(),
        library.Import(folder / "import"),     library.Export(folder / "export", ids)};
    for (const auto& problem : problems)
      EXPECT_THAT(problem.value_or("done"), HasSubstr("File too large")) << &problem - problems;
  }
  EXPECT_EQ(Seen(library), before);
  PresetLibrary other({folder / "own", folder / "factory"});
  EXPECT_THAT(other.Load(), IsEmpty());
  EXPECT_EQ(Seen(other), before);
  for (const auto& entry : fs::directory_iterator(folder / "own"))
    EXPECT_THAT(entry.path().filename(), AnyOf("mine.preset", "ember.preset"));
  EXPECT_EQ(library.UndoText(), "Change \"Ember\"");
  EXPECT_EQ(library.Undo(), kDone);

  fs::permissions(folder / "own", fs::perms(0555));
  const Unprivileged nobody;
  EXPECT_THAT(library.Remove("mine").value_or(""), HasSubstr("Permission denied"));
  EXPECT_THAT(library.Add("x", DefaultSettings()).value_or(""), HasSubstr("Permission denied"));
  EXPECT_EQ(library.Presets().size(), 2u);
}

// The last of several steps fails.
TEST(PresetHardship, AHalfDoneChangeIsTakenBack) {
  const ScratchFolder folder;
  WriteText(folder / "factory/ember.preset", PresetText("Ember", 0.1F));
  WriteText(folder / "own/ember.preset", PresetText("Ember", 0.9F));
  WriteText(folder / "own/removed", "not the folder that it should be");
  PresetLibrary library({folder / "own", folder / "factory"});
  library.Load();
  EXPECT_THAT(library.RestoreFactory().value_or(""), HasSubstr("Not a directory"));
  EXPECT_THAT(library.Remove("ember").value_or(""), HasSubstr("Not a directory"));
  EXPECT_THAT(library.Load(), IsEmpty());
  EXPECT_THAT(Seen(library), testing::ElementsAre("ember|Ember|0.900000|changed"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder / "own"), fs::directory_iterator()), 2);
}

// Tells its parent of every change that was made.
void ChangeUntilKilled(const fs::path& own, int report) {
  PresetLibrary library({own, {}});
  library.Load();
  for (int i = 0;; ++i) {
    const bool kept = !library.Add(library.FreshName("New"), LookWith(0.5F)) &&
                      !library.Replace("mine", LookWith(i % 2 ? 0.3F : 0.6F)) &&
                      !library.SetFavorite("mine", i % 2) &&
                      !library.Rename("other", library.FreshName("Other")) &&
                      !library.Remove("gone") && !library.Undo();
    if (!kept || write(report, "+", 1) != 1) _exit(1);
  }
}

TEST(PresetHardship, KilledAtAnyMomentNothingIsLost) {
  const ScratchFolder folder;
  for (const char* const name : {"mine", "other", "gone"})
    WriteText(folder / (std::string("own/") + name + ".preset"), PresetText(name, 0.3F));
  PresetLibrary library({folder / "own", {}});
  std::size_t told = 0;
  for (useconds_t i = 0; i < 60; ++i) {
    int pipes[2];
    ASSERT_EQ(pipe(pipes), 0);
    const pid_t child = fork();
    if (child == 0) ChangeUntilKilled(folder / "own", pipes[1]);
    close(pipes[1]);
    char first;
    ASSERT_EQ(read(pipes[0], &first, 1), 1);
    usleep(i * 997 % 40000);
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "a change failed";
    char rest[4096];
    told += 1 + static_cast<std::size_t>(std::max<ssize_t>(read(pipes[0], rest, sizeof rest), 0));
    close(pipes[0]);

    ASSERT_THAT(library.Load(), IsEmpty());
    ASSERT_GE(library.Presets().size(), told + 2);
    ASSERT_NE(library.Find("mine"), nullptr);
    ASSERT_NE(library.Find("other"), nullptr);
    if (!library.Find("gone")) // killed between removing and taking that back
      fs::copy(folder / "own/removed/gone.preset", folder / "own/gone.preset");
  }
}

// The next one that writes there takes away what it had not finished.
TEST(PresetHardship, KilledWhileWritingNothingIsLeftBehind) {
  const ScratchFolder folder;
  WriteText(folder / "own/mine.preset", PresetText("Mine"));
  PresetLibrary library({folder / "own", {}});
  library.Load();
  const std::string ids[] = {"mine"};
  const std::function<PresetLibrary::Problem()> writes[] = {
      [&] { return library.Add("Last", DefaultSettings()); },
      [&] { return library.Export(folder / "export", ids); }};
  for (const auto& write : writes) {
    const pid_t child = fork();
    if (child == 0) {
      const SmallDisk disk(20);
      signal(SIGXFSZ, SIG_DFL);
      write();
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(write(), kDone);
  }
  std::set<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder / ""))
    names.insert(entry.path().filename());
  EXPECT_THAT(names, testing::ElementsAre("export", "last.preset", "mine.preset", "own"));
}

TEST(PresetHardship, TwoProgramsAtOnceKeepEverything) {
  const ScratchFolder folder;
  constexpr int kEach = 40;
  pid_t children[2];
  for (pid_t& child : children) {
    child = fork();
    if (child != 0) continue;
    PresetLibrary library({folder / "own", {}});
    bool kept = true;
    for (int i = 0; i < kEach; ++i) {
      std::string id;
      kept = kept && !library.Add(library.FreshName("Same"), LookWith(0.5F), &id) &&
             !library.SetFavorite(id, true);
    }
    _exit(kept ? 0 : 1);
  }
  for (const pid_t child : children) {
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  PresetLibrary library({folder / "own", {}});
  EXPECT_THAT(library.Load(), IsEmpty());
  ASSERT_EQ(library.Presets().size(), std::size_t{2 * kEach});
  for (const Preset& preset : library.Presets())
    EXPECT_TRUE(preset.favorite) << preset.id;
}

} // namespace
} // namespace halvenor
