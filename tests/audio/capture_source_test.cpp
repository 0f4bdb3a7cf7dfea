#include "audio/capture_source.h"
#include "audio/media_player.h"
#include "tests/support/sound_files.h"
#include "tests/support/sound_servers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pulse/pulseaudio.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>

// The linker leads every question for the server's defaults through here, so that a connection can
// be as PipeWire's sometimes are: it hears of no other default than the first.
namespace {
bool firstIsDeaf;
pa_context* deaf;
pa_server_info_cb_t deafAnswer;
} // namespace

extern "C" pa_operation* __real_pa_context_get_server_info(pa_context*, pa_server_info_cb_t, void*);
extern "C" pa_operation* __wrap_pa_context_get_server_info(pa_context* context,
                                                           pa_server_info_cb_t answer, void* user) {
  if (deaf == nullptr && firstIsDeaf) deaf = context;
  if (context != deaf) return __real_pa_context_get_server_info(context, answer, user);
  deafAnswer = answer;
  const auto lie = [](pa_context* from, const pa_server_info* info, void* to) {
    pa_server_info old = *info;
    old.default_sink_name = "alpha";
    deafAnswer(from, &old, to);
  };
  return __real_pa_context_get_server_info(context, lie, user);
}

// And the one stream of the connection can be as after a server has hung for long: all that it
// brings is called late from then on.
namespace {
bool isLate;
std::optional<std::uint32_t> lateStream;
} // namespace

extern "C" int __real_pa_stream_get_latency(pa_stream*, pa_usec_t*, int*);
extern "C" int __wrap_pa_stream_get_latency(pa_stream* stream, pa_usec_t* latency, int* negative) {
  if (isLate && !lateStream) lateStream = pa_stream_get_index(stream);
  if (lateStream != pa_stream_get_index(stream))
    return __real_pa_stream_get_latency(stream, latency, negative);
  *latency = 30'000'000;
  *negative = 0;
  return 0;
}

namespace halvenor {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using State = CaptureSource::State;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Where the spectrum has its summit; nothing when it is silent.
std::optional<long> LoudestBin(const RenderVisualData& record) {
  const auto* loudest = std::ranges::max_element(record.spectrum[0]);
  return *loudest > 100 ? std::optional(loudest - record.spectrum[0]) : std::nullopt;
}

class Ear : public CaptureSource::Listener {
public:
  void StateChanged(State state, const std::string& source) override {
    states.emplace_back(state, source);
  }
  void Record(const RenderVisualData& record) override {
    ++records;
    bin = LoudestBin(record);
    if (bin && !firstLoud) firstLoud = Clock::now();
  }
  void Level(float now) override { level = now; }
  void ChosenSourceGone(const std::string& name) override { told.push_back("gone " + name); }
  void ChosenSourceBack(const std::string& name) override { told.push_back("back " + name); }

  bool Until(const std::function<bool()>& done, Clock::duration patience = 20s) {
    const auto end = Clock::now() + patience;
    while (!done()) {
      if (Clock::now() > end) return false;
      const auto begin = Clock::now();
      std::this_thread::sleep_for(5ms);
      if (!firstLoud) longestGap = std::max(longestGap, Clock::now() - begin);
      server.Poll();
      capture.Poll();
      if (andPoll) andPoll();
    }
    return true;
  }
  bool Hears(long wanted) {
    return Until([&] { return bin == wanted && capture.CurrentState() == State::Listening; });
  }
  bool Reaches(State wanted) {
    return Until([&] { return capture.CurrentState() == wanted; });
  }

  SoundServer server{"halvenor-test"};
  CaptureSource capture{server, *this};
  std::vector<std::pair<State, std::string>> states;
  std::vector<std::string> told;
  int records = 0;
  std::optional<long> bin;
  std::optional<Clock::time_point> firstLoud;
  Clock::duration longestGap{}; // between polls, before that
  float level = 0;
  std::function<void()> andPoll;
};

class CaptureSourceTest : public testing::TestWithParam<TestSoundServer::Kind> {
protected:
  void SetUp() override {
    low = folder.Write("low.wav", "wavenc", {44100, 2, 30, Sine(12 * 86.13)});
    high = folder.Write("high.wav", "wavenc", {44100, 2, 30, Sine(40 * 86.13, 0.01)});
    ASSERT_TRUE(machine.Start());
    firstIsDeaf = isLate = false;
    deaf = nullptr;
    lateStream.reset();
  }
  bool MicrophoneIsOpen() {
    const std::string sources = machine.Ask("list short sources");
    const std::size_t begin = sources.find("\tmic\t");
    EXPECT_NE(begin, std::string::npos);
    return sources.substr(begin, sources.find('\n', begin) - begin).ends_with("RUNNING");
  }

  SoundFolder folder;
  std::string low, high;
  TestSoundServer machine{GetParam()};
  Ear ear;
};

TEST_P(CaptureSourceTest, WhatTheDefaultOutputPlaysIsFollowed) {
  ear.capture.Open();
  {
    const Playing playing(low, "alpha");
    ASSERT_TRUE(ear.Hears(12));
    EXPECT_GT(ear.level, 0.98F);
    EXPECT_EQ(ear.capture.Current().description, "Loud_alpha");
  }
  ASSERT_TRUE(machine.Control("set-default-sink beta"));
  const Playing playing(high, "beta");
  ASSERT_TRUE(ear.Hears(40)) << "quiet, and lifted";
  EXPECT_NEAR(ear.level, 1 - 40.0 / 60, 0.02) << "of the sound before it was lifted";
  EXPECT_EQ(ear.capture.Current().description, "Loud_beta");

  ASSERT_TRUE(machine.RemoveOutput("beta"));
  ASSERT_TRUE(ear.Until([&] { return ear.capture.Current().description == "Loud_alpha"; }));
  EXPECT_FALSE(MicrophoneIsOpen());
  EXPECT_THAT(ear.told, ElementsAre());

  const auto sources = ear.server.Sources();
  EXPECT_THAT(sources, Contains(SoundSource{"alpha.monitor", "Loud_alpha",
                                            SoundSource::Kind::OutputMonitor, true}));
  EXPECT_EQ(std::ranges::find(sources, "mic", &SoundSource::name)->kind,
            SoundSource::Kind::Microphone);
}

TEST_P(CaptureSourceTest, ANewDefaultIsFoundByAConnectionThatHearsNothingOfIt) {
  firstIsDeaf = true;
  ear.capture.Open();
  {
    const Playing playing(low, "alpha");
    ASSERT_TRUE(ear.Hears(12));
  }
  ASSERT_TRUE(machine.Control("set-default-sink beta"));
  const Playing playing(high, "beta");
  ASSERT_TRUE(ear.Hears(40));
  EXPECT_NE(deaf, nullptr);
}

TEST_P(CaptureSourceTest, AServerThatDiesIsWaitedFor) {
  ear.capture.Open();
  for (int round = 0; round < 2; ++round) {
    const Playing playing(low, "alpha");
    ASSERT_TRUE(ear.Hears(12)) << round;
    machine.Kill();
    ASSERT_TRUE(ear.Reaches(State::ServerGone));
    const int before = ear.records;
    ASSERT_TRUE(ear.Until([&] { return ear.records > before + 10; })) << "silence goes on";
    EXPECT_FALSE(ear.bin);
    ASSERT_TRUE(machine.Start());
  }
  EXPECT_THAT(ear.states, Contains(std::pair(State::ServerGone, std::string("Loud_alpha"))));
}

TEST_P(CaptureSourceTest, AChosenSourceIsReplacedWhileItIsAway) {
  const Playing onAlpha(low, "alpha");
  ear.capture.Open("beta.monitor");
  {
    const Playing onBeta(high, "beta");
    ASSERT_TRUE(ear.Hears(40));
  }
  ASSERT_TRUE(machine.RemoveOutput("beta"));
  ASSERT_TRUE(ear.Hears(12));
  EXPECT_THAT(ear.told, ElementsAre("gone beta.monitor"));
  ASSERT_TRUE(machine.MakeOutput("beta"));
  const Playing onBeta(high, "beta");
  ASSERT_TRUE(ear.Hears(40));
  EXPECT_THAT(ear.told, ElementsAre("gone beta.monitor", "back beta.monitor"));
  EXPECT_FALSE(MicrophoneIsOpen());

  ear.capture.Open("mic");
  ASSERT_TRUE(ear.Until([&] { return ear.capture.Current().name == "mic"; }));
  ASSERT_TRUE(ear.Until([&] { return MicrophoneIsOpen(); })) << "it was asked for";
}

TEST_P(CaptureSourceTest, SilenceIsToldAfterTwoSeconds) {
  ear.capture.Open();
  const auto begin = Clock::now();
  ASSERT_TRUE(ear.Reaches(State::NoSignal));
  EXPECT_LT(Clock::now() - begin, 5s);
  EXPECT_GT(ear.records, 10);
  EXPECT_EQ(ear.level, 0);
  ASSERT_TRUE(machine.Control("set-sink-mute alpha 1"));
  ASSERT_TRUE(ear.Reaches(State::Muted));
  ASSERT_TRUE(machine.Control("set-sink-mute alpha 0"));
  ASSERT_TRUE(ear.Reaches(State::NoSignal));
  ASSERT_TRUE(machine.Control("set-sink-volume alpha 0"));
  ASSERT_TRUE(ear.Reaches(State::Muted));
  ASSERT_TRUE(machine.Control("set-sink-volume alpha 65536"));
  const Playing playing(low, "alpha");
  ASSERT_TRUE(ear.Hears(12));
  ear.capture.Close();
  const int before = ear.records;
  ear.Until([] { return false; }, 200ms);
  EXPECT_EQ(ear.records, before);
}

/// A player that is polled with the ear, as long as it lives.
class Mouth : public MediaPlayer::Listener {
public:
  explicit Mouth(Ear& ear, const std::string& sink = {})
      : player(*this, sink, &ear.server), ear_(ear) {
    ear_.andPoll = [this] { player.Poll(); };
  }
  ~Mouth() { ear_.andPoll = nullptr; }
  Mouth(const Mouth&) = delete;
  Mouth& operator=(const Mouth&) = delete;

  void Started(const MediaTags&) override { ++starts; }
  void TagsChanged(const MediaTags&) override {}
  void Record(const RenderVisualData&) override {}
  void StateChanged(MediaPlayer::State state) override { told.push_back(state); }
  void Ended() override {}
  void Failed(const std::string& error) override { ADD_FAILURE() << error; }

  std::vector<MediaPlayer::State> told;
  int starts = 0;
  MediaPlayer player;

private:
  Ear& ear_;
};

// Whoever waited for it would wait for ever.
TEST_P(CaptureSourceTest, AServerThatHangsHoldsUpNothing) {
  Mouth mouth(ear);
  MediaPlayer& player = mouth.player;
  ear.capture.Open();
  player.Open(low);
  ASSERT_TRUE(ear.Hears(12));
  machine.Signal(SIGSTOP);
  ASSERT_TRUE(ear.Reaches(State::NoSignal));
  player.Pause();
  player.Seek(3);
  player.Play();
  machine.Signal(SIGCONT);
  isLate = true;
  ear.Until([] { return false; }, 1s);
  ASSERT_TRUE(lateStream);
  ASSERT_TRUE(ear.Hears(12)) << "in a new stream";
  EXPECT_GT(player.Position(), 2);
}

// The player goes by the latency of what it plays, the listener by that of what it records. Other
// load on the machine disturbs some tries, so the middle one of five counts.
TEST_P(CaptureSourceTest, PictureAndSoundAreInStep) {
  { // PulseAudio's silent outputs have rendered two seconds ahead before they are first used
    const Playing playing(low, "alpha");
    ear.capture.Open();
    ASSERT_TRUE(ear.Hears(12));
  }
  const auto lateness = [&](double at, double offset) {
    const auto wave = [at, tone = Sine(1000)](double time, int channel) {
      return time < at ? 0 : tone(time, channel);
    };
    Mouth mouth(ear, "pulsesink");
    MediaPlayer& player = mouth.player;
    EXPECT_TRUE(ear.Until([&] { return !ear.bin; }));
    ear.firstLoud.reset();
    ear.longestGap = {};
    player.Open(folder.Write("late.wav", "wavenc", {44100, 2, at + 1, wave}));
    EXPECT_TRUE(ear.Until([&] { return ear.firstLoud.has_value(); }));
    const std::chrono::duration<double> since = Clock::now() - *ear.firstLoud;
    const double late = player.Position() - at - since.count() - offset;
    // Whoever is kept from polling is late itself, by that much at most.
    const std::chrono::duration<double> kept = ear.longestGap;
    return late > 0 ? std::max(0.0, late - kept.count()) : late;
  };
  for (const int offset : {0, 300}) {
    ear.capture.SetOffset(offset);
    std::vector<double> late;
    for (int round = 0; round < 5; ++round) // at different places in the records
      late.push_back(lateness(0.6 + 0.0195 * round, offset / 1000.0));
    std::ranges::sort(late);
    // Without an offset a record is late by itself: all of its 50 ms must have come.
    EXPECT_GT(late[2], -0.06) << offset << testing::PrintToString(late);
    EXPECT_LT(late[2], offset == 0 ? 0.11 : 0.06) << offset << testing::PrintToString(late);
  }
}

TEST_P(CaptureSourceTest, APauseIsHeardAtOnce) {
  Mouth mouth(ear);
  MediaPlayer& player = mouth.player;
  ear.capture.Open();
  player.Open(low);
  std::vector<Clock::duration> late;
  for (int round = 0; round < 5; ++round) {
    player.Play();
    ASSERT_TRUE(ear.Hears(12));
    const auto begin = Clock::now();
    player.Pause();
    ASSERT_TRUE(ear.Until([&] { return ear.level == 0; }));
    late.push_back(Clock::now() - begin);
    EXPECT_TRUE(ear.Until([&] { return mouth.told.back() == MediaPlayer::State::Paused; }));
  }
  std::ranges::sort(late);
  // 60 ms, and what the listener itself needs to find out; none waits for a buffer to run empty.
  EXPECT_LT(late[2], 200ms);
  EXPECT_LT(late[4], 1s);
}

// The player goes on silently while there is no server, and aloud when it is back.
TEST_P(CaptureSourceTest, ThePlayerOutlivesTheServer) {
  Mouth mouth(ear);
  MediaPlayer& player = mouth.player;
  ear.capture.Open();
  player.Open(low);
  ASSERT_TRUE(ear.Hears(12));
  machine.Kill();
  ASSERT_TRUE(ear.Reaches(State::ServerGone));
  const double then = player.Position();
  ASSERT_TRUE(ear.Until([&] { return player.Position() > then + 0.5; }));
  ASSERT_TRUE(machine.Start());
  ASSERT_TRUE(ear.Hears(12));
  EXPECT_GT(player.Position(), then);
  EXPECT_EQ(mouth.starts, 1);
}

INSTANTIATE_TEST_SUITE_P(, CaptureSourceTest,
                         testing::Values(TestSoundServer::Kind::PulseAudio,
                                         TestSoundServer::Kind::PipeWire),
                         [](const auto& tested) {
                           return tested.param == TestSoundServer::Kind::PulseAudio ? "PulseAudio"
                                                                                    : "PipeWire";
                         });

} // namespace
} // namespace halvenor
