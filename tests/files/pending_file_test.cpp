#include "files/file_bytes.h"
#include "files/locked_folder.h"
#include "files/pending_file.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class PendingFileTest : public testing::Test {
protected:
  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_))
      names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
  }
  static bool Put(PendingFile& file, std::string_view text) {
    return file && file.Write(std::as_bytes(std::span(text)));
  }
  [[nodiscard]] std::string Read(const std::string& name) const {
    return ReadFileBytes(AT_FDCWD, folder_ / name, Links::Refuse).bytes.value_or("none");
  }
  [[nodiscard]] mode_t ModeOf(const std::string& name) const {
    struct stat state {};
    return stat((folder_ / name).c_str(), &state) == 0 ? state.st_mode & 0777 : 0;
  }

  const ScratchFolder scratch_;
  const fs::path& folder_ = scratch_.Path();
};

TEST_F(PendingFileTest, AppearsWholeAndWithTheRightPermissions) {
  const mode_t mask = umask(022);
  const std::string longName(250, 'n');
  std::ofstream(folder_ / "private") << "old";
  chmod((folder_ / "private").c_str(), 0600);
  fs::create_symlink("private", folder_ / "link");
  const struct {
    std::string name, target;
    mode_t asked, given;
  } cases[] = {
      {"usual", "usual", 0666, 0644},     {"block", "block", 0600, 0600},
      {"private", "private", 0666, 0600}, {"link", "private", 0666, 0600},
      {longName, longName, 0666, 0644},
  };
  for (const auto& [name, target, asked, given] : cases) {
    const std::string before = Read(target);
    PendingFile file = PendingFile::Create(folder_ / name, asked);
    EXPECT_TRUE(Put(file, name)) << file.Problem();
    EXPECT_EQ(Read(target), before);
    EXPECT_TRUE(file.Commit()) << file.Problem();
    EXPECT_EQ(Read(target), name);
    EXPECT_EQ(ModeOf(target), given) << name;
  }
  {
    PendingFile dropped = PendingFile::Create(folder_ / "private");
    EXPECT_TRUE(Put(dropped, "new"));
  }
  EXPECT_EQ(Read("private"), "link");
  EXPECT_EQ(PendingFile::Create(folder_ / std::string(256, 'n')).Error(), ENAMETOOLONG);
  EXPECT_EQ(PendingFile::Create(folder_).Error(), EISDIR);
  PendingFile full = PendingFile::Create("/dev/full");
  EXPECT_FALSE(Put(full, "x"));
  EXPECT_EQ(full.Problem(), "cannot write /dev/full: No space left on device");
  EXPECT_THAT(Names(), ElementsAre("block", "link", longName, "private", "usual"));
  umask(mask);
}

TEST_F(PendingFileTest, WhatAKilledProcessLeftBehindIsRemovedAndNothingElse) {
  const OwnedDescriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY));
  TemporaryFile alive;
  ASSERT_EQ(TemporaryFile::Create(folder.Get(), "file", 0600, alive), 0);
  const pid_t killed = fork();
  if (killed == 0) {
    TemporaryFile left;
    _exit(TemporaryFile::Create(folder.Get(), "file", 0600, left));
  }
  waitpid(killed, nullptr, 0);
  EXPECT_EQ(Names().size(), 2U);
  PendingFile next = PendingFile::Create(folder_ / "next");
  EXPECT_TRUE(next.Commit());
  EXPECT_THAT(Names(), ElementsAre(alive.Name(), "next"));
  TemporaryFile::RemoveAll();
  EXPECT_THAT(Names(), ElementsAre("next"));
}

} // namespace
} // namespace halvenor
