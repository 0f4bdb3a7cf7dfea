#include "host/log_capture.h"
#include "platform/carbon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace halvenor {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

void Write(std::string line) {
  line.insert(line.begin(), static_cast<char>(line.size()));
  DebugStr(reinterpret_cast<ConstStr255Param>(line.data()));
}

TEST(LogCapture, ShowsAndKeepsWhatIsAskedFor) {
  const std::string news = " Halvenor : ARB shader support found!";
  const struct {
    LogCapture::Echo before, after;
    const char* shown;
  } cases[] = {
      {LogCapture::Echo::Nothing, LogCapture::Echo::Nothing, ""},
      {LogCapture::Echo::Nothing, LogCapture::Echo::Errors,
       "me: Can't “go”\nme: Can't “go” (3 more times)\n"},
      {LogCapture::Echo::Errors, LogCapture::Echo::Errors,
       "me: Can't “go”\nme: Can't “go” (4 more times)\n"},
      {LogCapture::Echo::Everything, LogCapture::Echo::Nothing,
       "me: Halvenor : ARB shader support found!\nme: Can't “go”\nme: Can't “go” (1 more time)\n"},
  };
  for (const auto& [before, after, shown] : cases) {
    testing::internal::CaptureStderr();
    {
      LogCapture log(before, "me");
      Write(news);
      for (int i = 0; i < 2; ++i)
        Write(" Can't\n“go”\x1b");
      log.StartEcho(after);
      for (int i = 0; i < 2; ++i)
        Write("Can't “go”");
      Write("Can't “go”");
      EXPECT_EQ(log.TakeText(), "Can't “go”");
      EXPECT_EQ(log.TakeText(), "");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), shown);
  }
}

TEST(RepeatedLines, AreShownOnceAndCountedWhenTheyEnd) {
  RepeatedLines lines;
  RepeatedLines::Clock::time_point now;
  EXPECT_THAT(lines.Add("a", now), ElementsAre("a"));
  EXPECT_THAT(lines.Add("b", now), ElementsAre("b"));
  for (int i = 0; i < 300; ++i) { // two errors a frame
    EXPECT_THAT(lines.Add("a", now += 10ms), IsEmpty());
    EXPECT_THAT(lines.Add("b", now), IsEmpty());
  }
  EXPECT_THAT(lines.Add("a", now += 1500ms), IsEmpty());
  EXPECT_THAT(lines.Add("c", now += 1s), ElementsAre("b (300 more times)", "c"));
  for (const char* const line : {"1", "2", "3", "4", "5", "6"})
    EXPECT_THAT(lines.Add(line, now), ElementsAre(line));
  EXPECT_THAT(lines.Add("7", now), ElementsAre("a (301 more times)", "7"));
  EXPECT_THAT(lines.Add("7", now), IsEmpty());
  EXPECT_THAT(lines.End(), ElementsAre("7 (1 more time)"));
  EXPECT_THAT(lines.Add("7", now), ElementsAre("7"));
}

} // namespace
} // namespace halvenor
