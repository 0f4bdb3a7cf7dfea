// The rules of the player that need neither sound nor a display.
#include "desktop/playback/failure_tally.h"
#include "desktop/playback/media_queue.h"
#include "desktop/playback/plugin_feed.h"
#include "desktop/playback/sound_settings.h"
#include "desktop/shown_text.h"
#include "tests/support/fake_plugin.h"
#include "tests/support/plain_host.h"

#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <gtest/gtest.h>

namespace halvenor::test {
namespace {

std::vector<QueueEntry> Entries(int count) {
  std::vector<QueueEntry> entries;
  for (int i = 0; i < count; ++i)
    entries.push_back({std::to_string(i) + ".ogg", std::to_string(i)});
  return entries;
}

TEST(MediaQueueTest, KnowsItsPlaceAndItsEnds) {
  MediaQueue queue;
  EXPECT_FALSE(queue.GoTo(0));
  queue.Replace(Entries(3));
  EXPECT_EQ(queue.FromCurrent(0), nullptr);
  EXPECT_EQ(queue.FromCurrent(1), nullptr); // before the first it is not said which comes next
  ASSERT_TRUE(queue.GoTo(0));
  EXPECT_EQ(queue.FromCurrent(-1), nullptr);
  EXPECT_EQ(queue.FromCurrent(1)->title, "1");
  EXPECT_EQ(queue.FromCurrent(1)->medium, "1.ogg");
  EXPECT_FALSE(queue.GoTo(3) || queue.GoTo(-1));
  EXPECT_EQ(queue.Current(), 0);
  ASSERT_TRUE(queue.GoTo(2));
  EXPECT_EQ(queue.FromCurrent(1), nullptr);
  queue.Replace({});
  EXPECT_EQ(queue.Current(), -1);
}

// A run over entries, 'x' for a broken one and 'o' for one that plays, and all that is said.
TEST(FailureTallyTest, SaysEnoughButNotTooMuch) {
  const std::string broken(50, 'x');
  const struct {
    std::string entries;
    std::vector<std::string> said;
    std::size_t played;
  } cases[] = {
      {"o", {}, 1},
      {"x", {"0"}, 1},
      {"oxo", {"1"}, 3},
      {"xx", {"0", "1", "None of the 2 entries could be played"}, 2},
      {"oxx", {"1", "2"}, 3},
      {"xxxxxo", {"0", "1", "2", "2 more could not be played"}, 6},
      {"oxxxxx", {"1", "2", "3", "2 more could not be played"}, 6},
      {"xxxxoxxxx",
       {"0", "1", "2", "1 more could not be played", "5", "6", "7", "1 more could not be played"},
       9},
      {broken + "o",
       {"0", "1", "2", "Stopped: 50 entries in a row could not be played"},
       broken.size()},
  };
  for (const auto& [entries, expected, played] : cases) {
    FailureTally tally;
    std::vector<std::string> said;
    const auto say = [&](const FailureTally::Report& report) {
      if (report) said.push_back(report->toStdString());
    };
    std::size_t i = 0;
    for (; i < entries.size() && !tally.IsHopeless(); ++i)
      say(entries[i] == 'o' ? tally.Played() : tally.Failed(QString::number(i)));
    say(tally.Ended(entries.size()));
    EXPECT_EQ(said, expected) << entries;
    EXPECT_EQ(i, played) << entries;
  }
}

TEST(ShownTextTest, IsOneHarmlessLine) {
  EXPECT_EQ(ShownLine(QString(" Größe,\r\n\t東京\x1b[31m") + QChar(0x202E)), "Größe, 東京 [31m");
  EXPECT_EQ(ShownLine(QString(1 << 20, 'x'), 10), QString(9, 'x') + QChar(0x2026));
}

TEST(SoundSettingsTest, TakesOnlyNumbersInRangeFromTheFile) {
  QTemporaryDir folder;
  const QString path = folder.filePath("halvenor.conf");
  const SoundOutput output{.name = "alpha", .description = {}, .monitor = {}};
  const struct {
    const char* stored;
    double volume;
    int delay;
  } cases[] = {{"0.25", 0.25, 0}, {"nan", 1, 0}, {"-inf", 1, 0},    {"1e300", 1, 0},
               {"loud", 1, 0},    {"-1", 1, -1}, {"2000", 1, 2000}, {"-2001", 1, 0}};
  for (const auto& [stored, volume, delay] : cases) {
    QSettings settings(path, QSettings::IniFormat);
    settings.setValue("sound/volume", stored);
    settings.setValue("offsets/alpha", stored);
    const SoundSettings sound(settings);
    EXPECT_EQ(sound.Volume(), volume) << stored;
    EXPECT_EQ(sound.Delay(output), delay) << stored;
    EXPECT_EQ(settings.contains("sound/volume"), volume != 1) << stored; // repaired
  }
}

// --- What the plug-in is told -------------------------------------------------------------------

TEST(PluginFeedTest, TellsEachThingOnceAndWhereItBelongs) {
  std::string told;
  LoadedFakePlugin(FAKE_PLUGIN).told = [&](const std::string& line) { told += line; };
  PlainHost services;
  const auto host = services.Load(FAKE_PLUGIN);
  ASSERT_TRUE(host) << services.error;
  host->Init();
  PluginFeed feed(*host);
  const FeedTitles first{.title = "One", .artist = "A", .stream = std::nullopt};
  const FeedTitles second{.title = "Two", .artist = "A", .stream = std::nullopt};
  const FeedTitles untagged{.title = "06", .artist = "", .stream = std::nullopt};
  const FeedTitles radio{.title = "Station", .artist = "", .stream = "B - Three"};
  const std::pair<std::function<void()>, std::string> steps[] = {
      {[&] { feed.Pause(); }, ""},
      {[&] { feed.Stop(); }, ""},
      {[&] { feed.Play(first); }, "[vply] One - A"},
      {[&] { feed.Play(first); }, ""},
      {[&] { feed.Unpause(); }, ""},
      {[&] { feed.Record({}); }, "[vrnd] silence 0"},
      {[&] { feed.Play(second); }, "[ctrk] Two - A"},
      {[&] { feed.Pause(), feed.Pause(); }, "[vpau]"},
      {[&] { feed.Play(second); }, ""}, // told, and still paused
      {[&] { feed.Unpause(), feed.Unpause(); }, "[vunp]"},
      {[&] { feed.Play(radio); }, "[ctrk] Station -  | B - Three"},
      {[&] { feed.Stop(), feed.Stop(); }, "[vstp]"},
      {[&] { feed.Record({}); }, "[vrnd] silence 1"},
      {[&] { feed.Play(); }, "[vply]"},
      {[&] { feed.Play(first); }, "[ctrk] One - A"},
      {[&] { feed.Pause(), feed.Stop(); }, "[vpau][vstp]"},
      {[&] { feed.Play(first); }, "[vply] One - A"},
      {[&] { feed.Play(untagged); }, "[ctrk] | 06"},
      {[&] { feed.Stop(), feed.Play(untagged); }, "[vstp][ctrk] | 06[vply] | 06"},
  };
  for (const auto& [step, expected] : steps) {
    told.clear();
    step();
    EXPECT_EQ(told, expected) << &expected - &steps[0].second;
  }
}

} // namespace
} // namespace halvenor::test
