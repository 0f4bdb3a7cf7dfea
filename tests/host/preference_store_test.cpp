#include "host/preference_store.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <signal.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::byte>;

Bytes Filled(std::size_t size, int value) {
  return Bytes(size, static_cast<std::byte>(value));
}

class PreferenceStoreTest : public testing::Test {
protected:
  const ScratchFolder scratch_;
  const fs::path& folder_ = scratch_.Path();
};

struct Answer {
  Status status;
  Bytes bytes;
  friend bool operator==(const Answer&, const Answer&) = default;
};

Answer Ask(PreferenceStore& store, std::string_view plugin, std::size_t room = 116) {
  Bytes buffer = Filled(room, 0xEE);
  std::size_t size = 999;
  const Status result = store.Read(plugin, buffer, size);
  EXPECT_LE(size, room);
  buffer.resize(std::min(size, room));
  return {result, buffer};
}

TEST_F(PreferenceStoreTest, BothKindsOfStoreKeepBlocksApart) {
  FilePreferenceStore files(folder_ / "not/yet/there");
  MemoryPreferenceStore memory;
  for (PreferenceStore* const store :
       {static_cast<PreferenceStore*>(&files), static_cast<PreferenceStore*>(&memory)}) {
    EXPECT_EQ(Ask(*store, "Halvenor"), (Answer{status::kOk, {}}));
    EXPECT_EQ(store->Write("Halvenor", Filled(116, 1)), status::kOk);
    EXPECT_EQ(store->Write("../Halvenor", Filled(7, 2)), status::kOk);
    EXPECT_EQ(store->Write("Halvenor", Filled(116, 3)), status::kOk);
    EXPECT_EQ(Ask(*store, "Halvenor"), (Answer{status::kOk, Filled(116, 3)}));
    EXPECT_EQ(Ask(*store, "../Halvenor"), (Answer{status::kOk, Filled(7, 2)}));
    // A smaller buffer gets the block's beginning, a larger one all there is.
    EXPECT_EQ(Ask(*store, "Halvenor", 20), (Answer{status::kOk, Filled(20, 3)}));
    EXPECT_EQ(Ask(*store, "Halvenor", 500), (Answer{status::kOk, Filled(116, 3)}));
  }
  EXPECT_EQ(files.FileOf("../Halvenor").parent_path(), folder_ / "not/yet/there");
  const auto entries = fs::directory_iterator(folder_ / "not/yet/there");
  EXPECT_EQ(std::distance(begin(entries), end(entries)), 2) << "something was left behind";
}

TEST_F(PreferenceStoreTest, FailuresHaveAStatusAndKeepTheOldBlock) {
  FilePreferenceStore store(folder_);
  fs::create_directory(store.FileOf("folder"));
  EXPECT_EQ(Ask(store, "folder"), (Answer{-EISDIR, {}}));
  EXPECT_EQ(store.Write("folder", Filled(4, 1)), -EISDIR);
  ASSERT_EQ(mkfifo(store.FileOf("pipe").c_str(), 0600), 0);
  fs::create_symlink("/dev/zero", store.FileOf("endless"));
  for (const char* const name : {"pipe", "endless"})
    EXPECT_EQ(Ask(store, name), (Answer{-EINVAL, {}})) << name;

  std::ofstream(folder_ / "file") << "in the way";
  FilePreferenceStore blocked(folder_ / "file");
  EXPECT_EQ(Ask(blocked, "Halvenor"), (Answer{-ENOTDIR, {}}));
  EXPECT_EQ(blocked.Write("Halvenor", Filled(4, 1)), -ENOTDIR);
}

// Writes two blocks of different sizes in turn until it is killed.
[[noreturn]] void WriteForEver(const fs::path& folder) {
  FilePreferenceStore store(folder);
  for (int turn = 0;; ++turn)
    if (store.Write("Halvenor", turn % 2 == 0 ? Filled(116, 0xAA) : Filled(90'000, 0xBB)) != 0)
      _exit(1);
}

TEST_F(PreferenceStoreTest, AKilledWriterLeavesAWholeBlock) {
  FilePreferenceStore store(folder_);
  ASSERT_EQ(store.Write("Halvenor", Filled(116, 0xAA)), status::kOk);
  const auto expectWhole = [&] {
    const auto [result, block] = Ask(store, "Halvenor", 100'000);
    ASSERT_EQ(result, status::kOk);
    ASSERT_TRUE(block == Filled(116, 0xAA) || block == Filled(90'000, 0xBB))
        << "a block of " << block.size() << " bytes";
  };
  using Clock = std::chrono::steady_clock;
  for (int round = 0; round < 25; ++round) {
    const pid_t writer = fork();
    if (writer == 0) WriteForEver(folder_);
    // What a reader meets while the writer is at work is what a kill would leave.
    const auto end = Clock::now() + std::chrono::microseconds(3000 + 977 * round);
    do
      expectWhole();
    while (!HasFatalFailure() && Clock::now() < end);
    kill(writer, SIGKILL);
    int ended = 0;
    waitpid(writer, &ended, 0);
    EXPECT_TRUE(WIFSIGNALED(ended)) << "the writer failed by itself";
    expectWhole();
    if (HasFailure()) return;
  }
  EXPECT_EQ(store.Write("Halvenor", Filled(116, 1)), status::kOk) << "a lock was left behind";
}

} // namespace
} // namespace halvenor
