#include "audio/media_player.h"
#include "tests/audio/slow_speaker.h"
#include "tests/support/process_use.h"
#include "tests/support/servers.h"
#include "tests/support/sound_files.h"

#include <gmock/gmock.h>
#include <gst/check/gsttestclock.h>
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
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
  explicit Host(const std::string& sink)
      : owned(std::make_unique<MediaPlayer>(*this, sink)), player(*owned) {}

  void Started(const MediaTags& tags) override { Tell("started " + tags.title); }
  void TagsChanged(const MediaTags& tags) override { tagsNow = tags; }
  void StateChanged(MediaPlayer::State state) override {
    Tell(state == MediaPlayer::State::Paused ? "paused" : "playing");
  }
  void AboutToEnd() override {
    if (onAboutToEnd) onAboutToEnd();
  }
  void SoundMissing(const std::string& text) override { Tell("missing " + text); }
  void Ended() override { Tell("ended"); }
  void Failed(const std::string& error) override { Tell("failed " + error); }
  void Record(const RenderVisualData& record) override {
    EXPECT_EQ(std::this_thread::get_id(), thread);
    ++records;
    if (!firstLoud && IsLoud(record)) {
      firstLoud = Clock::now();
      loudPosition = player.Position();
    }
    loudestBins.push_back(std::ranges::max_element(record.spectrum[0]) - record.spectrum[0]);
    if (onRecord) onRecord();
    TellLast("record");
  }

  /// Until `done`, or for that long; whether it came.
  bool PollUntil(const std::function<bool()>& done, Clock::duration patience = 10s) {
    const auto limit = Clock::now() + patience;
    while (!done()) {
      if (Clock::now() > limit) return false;
      std::this_thread::sleep_for(5ms);
      const auto now = Clock::now();
      const auto gap = now - lastPoll;
      if (!firstLoud) longestGap = std::max(longestGap, gap);
      if (!told.empty() && gap > 150ms) missed += static_cast<int>(gap / 50ms);
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

  /// Whether that many records were told, but for what this host was kept from asking for in time.
  [[nodiscard]] testing::AssertionResult HasTold(int count) const {
    const bool has = records <= count && records + missed >= count;
    return (has ? testing::AssertionSuccess() : testing::AssertionFailure())
           << records << " records, " << missed << " missed";
  }

  std::vector<std::string> told;
  MediaTags tagsNow;
  int records = 0;
  int missed = 0; // at most
  std::optional<Clock::time_point> firstLoud;
  double loudPosition = 0;
  Clock::time_point lastPoll = Clock::now();
  Clock::duration longestGap{};
  std::vector<long> loudestBins; // of each record
  std::function<void()> onRecord, onAboutToEnd;
  std::function<void(const std::string&)> onTold; // a record, too
  std::string lastTold;
  const std::thread::id thread = std::this_thread::get_id();
  std::unique_ptr<MediaPlayer> owned;
  MediaPlayer& player;

private:
  void Tell(const std::string& what) {
    EXPECT_EQ(std::this_thread::get_id(), thread);
    told.push_back(what);
    TellLast(what);
  }
  void TellLast(const std::string& what) {
    lastTold = what;
    if (onTold) onTold(what);
  }
};

/// Silence with a tone that begins at `at`.
Sound ToneAt(double at, double seconds) {
  return {48000, 2, seconds, [=, tone = Sine(1000)](double time, int channel) {
            return time < at ? 0 : tone(time, channel);
          }};
}

/// The clock of all silent playing that begins meanwhile: it stands still until it is advanced.
class SteppedClock {
public:
  SteppedClock() : clock_(GST_TEST_CLOCK(gst_test_clock_new())) {
    gst_system_clock_set_default(GST_CLOCK(clock_));
  }
  ~SteppedClock() {
    gst_system_clock_set_default(nullptr);
    gst_object_unref(clock_);
  }
  SteppedClock(const SteppedClock&) = delete;
  SteppedClock& operator=(const SteppedClock&) = delete;

  [[nodiscard]] std::chrono::nanoseconds Now() const {
    return std::chrono::nanoseconds(gst_clock_get_time(GST_CLOCK(clock_)));
  }
  /// By 10 ms; whoever waited for that goes on.
  void Advance() {
    gst_test_clock_advance_time(clock_, 10 * GST_MSECOND);
    GstClockID waiting = nullptr;
    while (gst_test_clock_peek_next_pending_id(clock_, &waiting) != FALSE) {
      const bool due = gst_clock_id_get_time(waiting) <= gst_clock_get_time(GST_CLOCK(clock_));
      gst_clock_id_unref(waiting);
      if (!due) break;
      GstClockID gone = gst_test_clock_process_next_clock_id(clock_);
      if (gone != nullptr) gst_clock_id_unref(gone);
    }
  }

private:
  GstTestClock* clock_;
};

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
  EXPECT_TRUE(host.HasTold(10));
  const int before = host.records;

  host.player.Play();
  ASSERT_TRUE(host.PollUntilStopped());
  ASSERT_TRUE(host.PollUntilRecords(before + 5)) << "played again from its start";
}

// With an audio device as well as on a machine that has none.
TEST_F(MediaPlayerTest, TheDefaultDeviceIsThereOrReplaced) {
  Host host("");
  host.player.Open(folder.Write("hush.flac", "flacenc", ToneAt(9, 0.3)));
  ASSERT_TRUE(host.PollUntilStopped());
  EXPECT_THAT(host.told, ElementsAre("started hush", "ended"));
  EXPECT_TRUE(host.HasTold(6));
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
  EXPECT_TRUE(host.HasTold(20));
  EXPECT_THAT(host.told, ElementsAre("started tone", "paused", "playing", "ended"));
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
  EXPECT_GE(host.records + host.missed, 18);
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
        Case{kSilentSink, text, text + ": isn't a supported audio file"},
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
  EXPECT_TRUE(host.HasTold(12));
  host.player.Play();
  ASSERT_TRUE(host.PollUntil([&] { return host.told.size() > 2; }));
  EXPECT_THAT(host.told, ElementsAre("started tone", "ended", EndsWith("no such file")));
}

// Three tracks, of which the first two end within a record, and a fourth that is broken.
TEST_F(MediaPlayerTest, TracksFollowEachOtherWithoutAHole) {
  const auto write = [&](const std::string& name, double seconds, int bin) {
    return folder.Write(name, "flacenc", {44100, 2, seconds, Sine(bin * 86.1328125)});
  };
  const std::vector<std::string> tracks{write("a.flac", 0.98, 10), write("b.flac", 0.52, 40),
                                        write("c.flac", 1.0, 80),
                                        folder.WriteBytes("broken.flac", "no sound in here")};
  std::vector<long> expected(19, 10);
  expected.push_back(0); // of both
  expected.resize(30, 40);
  expected.resize(50, 80);

  SteppedClock clock;
  Host host(kSilentSink);
  std::size_t next = 1;
  host.onAboutToEnd = [&] {
    EXPECT_EQ(host.player.CurrentMedium(), tracks[next - 1]);
    host.player.SetNext(tracks[next++]);
  };
  host.player.Open(tracks[0]);
  ASSERT_TRUE(host.PollUntil([&] {
    // Time waits for the records of a busy machine.
    if (clock.Now() < host.records * 50ms + 100ms) clock.Advance();
    return !host.told.empty() && host.told.back() == "ended";
  }));
  EXPECT_THAT(host.told, ElementsAre("started a", "started b", "started c", "ended"));
  EXPECT_EQ(next, 4U);
  ASSERT_EQ(host.loudestBins.size(), expected.size());
  host.loudestBins[19] = 0;
  EXPECT_EQ(host.loudestBins, expected);
}

TEST_F(MediaPlayerTest, SeekingGoesWhereItIsTold) {
  const Sound rising{44100, 2, 4, [](double time, int channel) {
                       return Sine(time < 2 ? 861.328 : 4306.64)(time, channel);
                     }};
  Host host(kSilentSink);
  host.player.Seek(1); // nothing is open
  host.onAboutToEnd = [&] { host.player.SetNext(folder.Path("rising.flac")); };
  host.player.Open(folder.Write("rising.flac", "flacenc", rising));
  ASSERT_TRUE(host.PollUntilRecords(3));
  EXPECT_TRUE(host.player.CanSeek());
  EXPECT_EQ(host.player.Length(), 4);
  host.player.Seek(3.5);
  EXPECT_NEAR(host.player.Position(), 3.5, 0.1);
  ASSERT_TRUE(host.PollUntil([&] { return host.loudestBins.back() == 50; }));
  EXPECT_NEAR(host.player.Position(), 3.5, 0.2);
  // Its end has been decoded long ago, and the next is waiting.
  host.player.Seek(1.9);
  ASSERT_TRUE(host.PollUntil([&] { return host.loudestBins.back() == 10; }));
  host.player.Pause();
  host.player.Seek(-1);
  ASSERT_TRUE(host.PollUntil([&] { return host.told.back() == "paused"; }));
  EXPECT_EQ(host.player.Position(), 0);
  host.onAboutToEnd = nullptr;
  host.player.Play();
  host.player.Seek(1e9);
  ASSERT_TRUE(host.PollUntilStopped());
  EXPECT_THAT(host.told, testing::Contains("ended"));
  EXPECT_EQ(std::ranges::count(host.told, "started rising"), 1);
}

TEST_F(MediaPlayerTest, TheKnobsActOnWhatIsHeardAlone) {
  Host host("slowspeaker");
  host.player.SetVolume(0.5);
  host.player.Open(folder.Write("tone.flac", "flacenc", ToneAt(0, 3)));
  float loudest = 0; // the device is given silence where there is nothing else
  ASSERT_TRUE(host.PollUntil([&] { return (loudest = slow_speaker::Loudest()) > 0.1F; }));
  EXPECT_NEAR(loudest, 0.125, 0.01) << "the cube";
  host.player.SetMuted(true);
  ASSERT_TRUE(host.PollUntil([] { return slow_speaker::Loudest() == 0; }));
  const int before = host.records;
  ASSERT_TRUE(host.PollUntilRecords(before + 2));
  EXPECT_EQ(host.loudestBins.back(), 12);
  host.player.SetOffset(400);
  const double position = host.player.Position();
  const int then = host.records;
  ASSERT_TRUE(host.PollUntilRecords(then + 1));
  EXPECT_GT(host.player.Position() - position, 0.3) << "the records are late from now on";
}

TEST_F(MediaPlayerTest, RecordsCanBeToldTwoSecondsEarly) {
  Host host(kSilentSink);
  host.player.SetOffset(-9999);
  host.player.Open(folder.Write("late.wav", "wavenc", ToneAt(2.3, 2.6)));
  ASSERT_TRUE(host.PollUntil([&] { return host.firstLoud.has_value(); }));
  EXPECT_LT(host.loudPosition, 0.6 + std::chrono::duration<double>(host.longestGap).count());
}

// Each has its threads, devices and files; none may be left.
TEST_F(MediaPlayerTest, ManyMediaLeaveNothingBehind) {
  const std::string path = folder.Write("short.flac", "flacenc", ToneAt(0, 0.3));
  std::ptrdiff_t before = 0;
  for (int i = 0; i < 60; ++i) {
    {
      Host host(i % 3 == 0 ? "slowspeaker" : kSilentSink);
      host.onAboutToEnd = [&] { host.player.SetNext(i % 2 == 0 ? path : folder.Path("gone")); };
      for (int open = 0; open < i % 4; ++open)
        host.player.Open(path);
      host.player.Open(path);
      host.PollUntilRecords(i % 5);
    }
    if (i == 10) before = OpenFiles();
  }
  EXPECT_LE(OpenFiles(), before + 2);
}

// Played twenty times as fast as by the clock on the wall: a few seconds here, an hour's worth with
// HALVENOR_TEST_MINUTES=60.
TEST_F(MediaPlayerTest, LongPlayingLeavesTheMemoryLevel) {
  const char* minutes = std::getenv("HALVENOR_TEST_MINUTES"); // NOLINT(concurrency-mt-unsafe)
  const int tracks = minutes != nullptr ? 60 * std::atoi(minutes) : 90;
  const std::string path =
      folder.Write("song.flac", "taginject tags=title=Song ! flacenc", ToneAt(0, 1));
  SteppedClock clock;
  Host host(kSilentSink);
  host.onAboutToEnd = [&] { host.player.SetNext(path); };
  host.player.Open(path);
  const auto played = [&](int count) {
    return host.PollUntil(
        [&] {
          for (int i = 0; i < 10; ++i) // 100 ms in 5
            clock.Advance();
          return host.told.size() >= static_cast<std::size_t>(count);
        },
        std::chrono::seconds(10 + count));
  };
  ASSERT_TRUE(played(tracks / 3));
  const long before = MemoryInUse();
  ASSERT_TRUE(played(tracks));
  EXPECT_LT(MemoryInUse(), before + 1000) << "kilobytes, before " << before;
  EXPECT_THAT(host.told, testing::Each("started Song"));
}

// A wave file that was cut, and one after it that was not.
TEST_F(MediaPlayerTest, SoundThatIsMissingIsTold) {
  const std::string cut = folder.Truncate(folder.Write("cut.wav", "wavenc", ToneAt(0, 2)), 0.25);
  const std::string whole = folder.Write("whole.mp3", "lamemp3enc ! xingmux", ToneAt(0, 1));
  Host host(kSilentSink);
  host.onAboutToEnd = [&] {
    host.onAboutToEnd = nullptr;
    host.player.SetNext(whole);
  };
  host.player.Open(cut);
  ASSERT_TRUE(host.PollUntil([&] { return host.told.size() == 3; }));
  host.player.Seek(0.6);
  ASSERT_TRUE(host.PollUntilStopped());
  EXPECT_THAT(host.told, ElementsAre("started short-cut", testing::StartsWith("missing " + cut),
                                     "started whole", "ended"));
}

// A listener may do anything: whatever was due after it is dropped.
TEST_F(MediaPlayerTest, AListenerMayDestroyThePlayer) {
  const std::string path = folder.Write("tone.wav", "wavenc", ToneAt(0, 0.3));
  for (const char* last : {"started tone", "record", "ended"}) {
    Host host(kSilentSink);
    host.onTold = [&](const std::string& what) {
      if (what == last) host.owned.reset();
    };
    host.player.Open(path);
    EXPECT_TRUE(Eventually([&] {
      host.owned->Poll();
      return !host.owned;
    })) << last;
    EXPECT_EQ(host.lastTold, last);
  }
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
