#include "host/media_player.h"
#include "tests/audio/slow_speaker.h"
#include "tests/audio/sound_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <thread>
#include <vector>

namespace halvenor {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using testing::ElementsAre;
using testing::EndsWith;

constexpr const char* kSilentSink = "fakesink sync=true";

bool IsLoud(const RenderVisualData& record) {
  return *std::ranges::max_element(record.spectrum[0]) > 100;
}

/// Polls as a host does and keeps what it is told.
class Host : public MediaPlayer::Listener {
public:
  explicit Host(const std::string& sink) : player(*this, sink) {}

  void Started(const MediaTags& tags) override { Tell("started " + tags.title); }
  void TagsChanged(const MediaTags& tags) override { tagsNow = tags; }
  void Ended() override { Tell("ended"); }
  void Failed(const std::string& error) override { Tell("failed " + error); }
  void Record(const RenderVisualData& record) override {
    EXPECT_EQ(std::this_thread::get_id(), thread);
    ++records;
    if (!firstLoud && IsLoud(record)) {
      firstLoud = Clock::now();
      loudPosition = player.Position();
    }
    if (onRecord) onRecord();
  }

  /// Until `done`, or for ten seconds; whether it came.
  bool PollUntil(const std::function<bool()>& done) {
    const auto limit = Clock::now() + 10s;
    while (!done()) {
      if (Clock::now() > limit) return false;
      std::this_thread::sleep_for(5ms);
      const auto now = Clock::now();
      if (!firstLoud) longestGap = std::max(longestGap, now - lastPoll);
      lastPoll = now;
      player.Poll();
    }
    return true;
  }
  bool PollUntilStopped() {
    return PollUntil(
        [this] { return !told.empty() && player.CurrentState() == MediaPlayer::State::Stopped; });
  }
  bool PollUntilRecords(int count) {
    return PollUntil([this, count] { return records >= count; });
  }

  std::vector<std::string> told;
  MediaTags tagsNow;
  int records = 0;
  std::optional<Clock::time_point> firstLoud;
  double loudPosition = 0;
  Clock::time_point lastPoll = Clock::now();
  Clock::duration longestGap{};
  std::function<void()> onRecord;
  const std::thread::id thread = std::this_thread::get_id();
  MediaPlayer player;

private:
  void Tell(const std::string& what) {
    EXPECT_EQ(std::this_thread::get_id(), thread);
    told.push_back(what);
  }
};

/// Silence with a tone that begins at `at`.
Sound ToneAt(double at, double seconds) {
  return {48000, 2, seconds, [=, tone = Sine(1000)](double time, int channel) {
            return time < at ? 0 : tone(time, channel);
          }};
}

class MediaPlayerTest : public testing::Test {
protected:
  static void SetUpTestSuite() { slow_speaker::Register(); }
  void SetUp() override { slow_speaker::Reset(); }
  SoundFolder folder;
};

// The device's latency is 150 ms: whoever ignores it is early by that much.
TEST_F(MediaPlayerTest, RecordsComeInStepWithWhatIsHeard) {
  for (const double at : {0.5, 0.73}) {
    slow_speaker::Reset();
    Host host("slowspeaker");
    host.player.Open(folder.Write("tone.flac", "flacenc", ToneAt(at, at + 0.6)));
    ASSERT_TRUE(host.PollUntil([&] { return host.firstLoud && slow_speaker::FirstHeard(); }));
    const auto late = *host.firstLoud - *slow_speaker::FirstHeard();
    EXPECT_GT(late, -60ms);
    EXPECT_LT(late, 60ms + host.longestGap); // a host that is kept from polling is late itself
    EXPECT_NEAR(host.loudPosition, at,
                0.06 + std::chrono::duration<double>(host.longestGap).count());
  }
}

TEST_F(MediaPlayerTest, AMediumIsToldFromItsStartToItsEnd) {
  Host host(kSilentSink);
  const std::string tagged = folder.Write(
      "song.flac", "taginject tags=title=Song,artist=Singer ! flacenc", ToneAt(0, 0.5));
  const auto begin = Clock::now();
  host.player.Open(tagged);
  EXPECT_EQ(host.player.CurrentState(), MediaPlayer::State::Playing);
  ASSERT_TRUE(host.PollUntilStopped());
  EXPECT_GT(Clock::now() - begin, 490ms);
  EXPECT_THAT(host.told, ElementsAre("started Song", "ended"));
  EXPECT_EQ(host.records, 10);

  host.player.Play();
  ASSERT_TRUE(host.PollUntilStopped());
  ASSERT_TRUE(host.PollUntilRecords(20)) << "played again from its start";
}

// With an audio device as well as on a machine that has none.
TEST_F(MediaPlayerTest, TheDefaultDeviceIsThereOrReplaced) {
  Host host("");
  host.player.Open(folder.Write("hush.flac", "flacenc", ToneAt(9, 0.3)));
  ASSERT_TRUE(host.PollUntilStopped());
  EXPECT_THAT(host.told, ElementsAre("started hush", "ended"));
  EXPECT_EQ(host.records, 6);
}

TEST_F(MediaPlayerTest, APauseStopsTheRecordsAndNothingIsLost) {
  Host host(kSilentSink);
  host.player.Open(folder.Write("tone.wav", "wavenc", ToneAt(0, 1)));
  ASSERT_TRUE(host.PollUntilRecords(5));
  host.player.Pause();
  const int before = host.records;
  const auto until = Clock::now() + 400ms;
  host.PollUntil([&] { return Clock::now() > until; });
  EXPECT_EQ(host.records, before);
  EXPECT_LT(host.player.Position(), 0.6);
  host.player.Play();
  ASSERT_TRUE(host.PollUntilStopped());
  EXPECT_EQ(host.records, 20);
  EXPECT_THAT(host.told, ElementsAre("started tone", "ended"));
}

TEST_F(MediaPlayerTest, AfterALongAbsenceOnlyTheLastRecordsAreTold) {
  Host host(kSilentSink);
  host.player.Open(folder.Write("tone.wav", "wavenc", ToneAt(0, 2)));
  ASSERT_TRUE(host.PollUntilRecords(1));
  std::this_thread::sleep_for(1s);
  const int before = host.records;
  host.player.Poll();
  EXPECT_GE(host.records - before, 2);
  EXPECT_LE(host.records - before, 5);

  host.onRecord = [&] { host.player.Pause(); };
  std::this_thread::sleep_for(300ms);
  const int paused = host.records;
  host.player.Poll();
  EXPECT_EQ(host.records, paused + 1) << "none after the listener has paused";
}

TEST_F(MediaPlayerTest, ADeviceThatFailsLeavesTheMediumSilentlyPlaying) {
  Host host("slowspeaker");
  host.player.Open(folder.Write("tone.wav", "wavenc", ToneAt(0, 1)));
  ASSERT_TRUE(host.PollUntilRecords(8));
  slow_speaker::Unplug();
  ASSERT_TRUE(host.PollUntilStopped());
  EXPECT_THAT(host.told, ElementsAre("started tone", "ended"));
  EXPECT_GE(host.records, 18);
  EXPECT_LE(host.records, 21) << "went on where it was";
}

TEST_F(MediaPlayerTest, FailuresAreToldByPoll) {
  const std::string text = folder.WriteBytes("words.txt", std::string(5000, 'w'));
  const std::string missing = folder.Path("gone.wav");
  struct Case {
    std::string sink, medium, error;
  };
  for (const auto& [sink, medium, error] :
       {Case{kSilentSink, missing, missing + ": no such file"},
        Case{kSilentSink, text, text + ": is not sound of a known kind"},
        Case{"nosuchsink", text, "GStreamer is not complete: no element \"nosuchsink\""}}) {
    Host host(sink);
    host.player.Open(medium);
    EXPECT_TRUE(host.told.empty());
    ASSERT_TRUE(host.PollUntilStopped());
    EXPECT_THAT(host.told, ElementsAre("failed " + error));
  }
}

TEST_F(MediaPlayerTest, AFileThatVanishesPlaysOnAndCannotBePlayedAgain) {
  Host host(kSilentSink);
  const std::string path = folder.Write("tone.flac", "flacenc", ToneAt(0, 0.6));
  host.player.Open(path);
  ASSERT_TRUE(host.PollUntilRecords(2));
  std::filesystem::remove(path);
  ASSERT_TRUE(host.PollUntilStopped());
  EXPECT_EQ(host.records, 12);
  host.player.Play();
  ASSERT_TRUE(host.PollUntil([&] { return host.told.size() > 2; }));
  EXPECT_THAT(host.told, ElementsAre("started tone", "ended", EndsWith("no such file")));
}

TEST_F(MediaPlayerTest, AListenerMayStopOrOpenAnother) {
  Host host(kSilentSink);
  const std::string first = folder.Write("first.wav", "wavenc", ToneAt(0, 1));
  const std::string second = folder.Write("second.wav", "wavenc", ToneAt(0, 1));
  host.onRecord = [&] {
    if (host.records == 3) host.player.Open(second);
    if (host.records == 6) host.player.Stop();
  };
  host.player.Open(first);
  ASSERT_TRUE(host.PollUntilRecords(6));
  const auto until = Clock::now() + 200ms;
  host.PollUntil([&] { return Clock::now() > until; });
  EXPECT_EQ(host.records, 6);
  EXPECT_EQ(host.player.Position(), 0);
  EXPECT_THAT(host.told, ElementsAre("started first", "started second"));
}

} // namespace
} // namespace halvenor
