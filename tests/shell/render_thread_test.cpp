// The render thread under a host's hands. Runs under the thread sanitizer, too.
#include "shell/render_thread.h"
#include "tests/shell/shell_test.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <random>
#include <thread>

namespace {

std::atomic<bool> creationFails = false;
std::atomic<bool> mayStart = true;

// How many render threads run, and how many ever ran at once.
std::atomic<int> running = 0;
std::atomic<int> mostRunning = 0;

void* RunCounted(void* routine) {
  const int now = ++running;
  if (now > mostRunning) mostRunning = now;
  while (!mayStart)
    std::this_thread::yield();
  void* result = reinterpret_cast<void* (*)(void*)>(routine)(nullptr);
  --running;
  return result;
}

} // namespace

extern "C" {
int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*routine)(void*), void* argument) {
  // The shell's own thread takes no argument; those of the C++ library, which a static program
  // brings here as well, do.
  if (argument != nullptr) return __real_pthread_create(thread, attributes, routine, argument);
  if (creationFails) return 11;
  return __real_pthread_create(thread, attributes, RunCounted, reinterpret_cast<void*>(routine));
}
}

namespace halvenor {
namespace {

using clock::StepResult;
using testing::ElementsAre;
using testing::StartsWith;

constexpr std::uint64_t kFrame = 1000000000 / 60;
constexpr std::int32_t kHalfAnHour = 1800 * 1000000;

// Finished frames, and what happens as each is handed over.
std::atomic<std::uint64_t> frames = 0;
std::function<void()> onFrame;

void TakeFrame(void*, const HalvenorFrame*) {
  ++frames;
  if (onFrame) onFrame();
}

void AwaitFrames(std::uint64_t count) {
  while (frames < count)
    std::this_thread::yield();
}

class RenderThreadTest : public ShellTest {
protected:
  void SetUp() override {
    ShellTest::SetUp();
    stand_ins::SetSilent(true);
    frames = 0;
    port_.frameFinished = TakeFrame;
    host_.Init();
    host_.Record()->settings.numLines = 2;
  }
  void TearDown() override {
    ShellTest::TearDown();
    onFrame = {};
    creationFails = false;
    EXPECT_EQ(running, 0);
    EXPECT_LE(mostRunning, 1);
  }
  void ShowStepped() {
    clock::UseStepped(kFrame);
    ASSERT_EQ(host_.Show(&port_), 0);
    EXPECT_EQ(clock::WaitUntilParked(), StepResult::Frame);
  }
};

TEST_F(RenderThreadTest, DrawsOnceOnTheHostsThreadAndThenOncePerStep) {
  std::vector<std::thread::id> drawers;
  onFrame = [&] { drawers.push_back(std::this_thread::get_id()); };
  ShowStepped();
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(Step(), StepResult::Frame);
  ASSERT_EQ(drawers.size(), 5U);
  EXPECT_EQ(drawers[0], std::this_thread::get_id());
  EXPECT_NE(drawers[1], std::this_thread::get_id());
  EXPECT_EQ(drawers[1], drawers[4]);
  EXPECT_EQ(rendering, 1);
  EXPECT_EQ(renderThreadExists, 1);
  host_.Send(message::kHide);
  EXPECT_EQ(Step(), StepResult::NoFrame);
  EXPECT_EQ(frames, 5U);
}

TEST_F(RenderThreadTest, ANullRecordDrawsNothingUntilARealOneComes) {
  ShowStepped();
  VisualMessage none{};
  VisualPluginHandler(Code("what"), &none, nullptr);
  EXPECT_EQ(Step(), StepResult::Frame);
  EXPECT_EQ(frames, 2U);
  host_.Send(message::kIdle);
  Step();
  EXPECT_EQ(frames, 3U);
}

TEST_F(RenderThreadTest, ShowingAgainJoinsTheOldThreadFirst) {
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(host_.Show(&port_), 0);
    EXPECT_EQ(stand_ins::LivePBuffers(), 4);
    EXPECT_EQ(stand_ins::LiveContexts(), 2); // those of the opening before are gone
    EXPECT_LE(running, 1);
  }
  AwaitFrames(frames + 3);
  host_.Send(message::kHide);
}

TEST_F(RenderThreadTest, HidingWaitsForTheFrameInProgress) {
  ShowStepped();
  std::promise<void> begun;
  std::promise<void> mayEnd;
  onFrame = [&, end = mayEnd.get_future().share()] {
    begun.set_value();
    end.wait();
  };
  auto step = std::async(std::launch::async, [] { return Step(); });
  begun.get_future().wait();
  std::atomic<bool> hidden = false;
  std::thread hider([&] {
    host_.Send(message::kHide);
    hidden = true;
  });
  for (int i = 0; i < 1000; ++i)
    std::this_thread::yield();
  EXPECT_FALSE(hidden);
  mayEnd.set_value();
  hider.join();
  EXPECT_FALSE(renderer->IsOpen());
  step.wait();
}

TEST_F(RenderThreadTest, AThreadThatWaitsForTheLockDrawsNothingOnceItIsToEnd) {
  host_.Record()->settings.frameDelay = 0;
  host_.Show(&port_);
  AwaitFrames(3);
  const MessageScope scope;
  // Long enough for the thread to come to the lock, where it waits.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  const std::uint64_t drawn = frames;
  CloseRenderer();
  EXPECT_EQ(frames, drawn);
}

TEST_F(RenderThreadTest, AThreadThatCannotBeMadeLeavesTheFirstFrame) {
  clock::UseStepped(kFrame);
  creationFails = true;
  EXPECT_EQ(host_.Show(&port_), 0);
  EXPECT_EQ(Step(), StepResult::NoFrame); // and does not wait for ever
  EXPECT_EQ(frames, 1U);
  EXPECT_EQ(host_.Send(message::kHide), 0);
  creationFails = false;
  EXPECT_EQ(host_.Show(&port_), 0);
  EXPECT_EQ(Step(), StepResult::Frame);
}

TEST_F(RenderThreadTest, AThreadThatStartsTooLateDrawsNothingAndIsJoined) {
  mayStart = false;
  host_.Show(&port_);
  std::thread starter([] {
    while (rendering != 0)
      std::this_thread::yield();
    mayStart = true;
  });
  EXPECT_EQ(host_.Send(message::kHide), 0);
  starter.join();
  EXPECT_EQ(frames, 1U);
  EXPECT_EQ(renderThreadExists, 0);
}

TEST_F(RenderThreadTest, AnOpeningThatFailsStartsNothing) {
  clock::UseStepped(kFrame);
  for (const bool shownBefore : {false, true}) {
    if (shownBefore) host_.Show(&port_);
    stand_ins::Fail("aglUpdateContext", 10000, 1);
    EXPECT_EQ(host_.Show(&port_), status::kDisplayNotOpened);
    stand_ins::Fail("aglUpdateContext", 0, 1, 0);
    EXPECT_EQ(rendering, 0);
    EXPECT_EQ(renderThreadExists, 0);
    EXPECT_EQ(Step(), StepResult::NoFrame);
    EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("Failed to resize openGL window : ")));
  }
}

TEST_F(RenderThreadTest, NoSleepHoldsUpAHide) {
  for (const bool held : {false, true}) {
    host_.Record()->settings.frameDelay = kHalfAnHour;
    const std::uint64_t before = frames;
    if (held) clock::Hold();
    host_.Show(&port_);
    AwaitFrames(before + 2); // the host's and the thread's first; then it sleeps
    EXPECT_EQ(host_.Send(message::kHide), 0);
    EXPECT_EQ(frames, before + 2);
    clock::Release();
  }
}

TEST_F(RenderThreadTest, FullScreenHasItsOwnPace) {
  host_.Record()->settings.frameDelay = kHalfAnHour;
  host_.Show(&port_, kFullScreenOption);
  AwaitFrames(6);
  host_.SendWindow(message::kSetWindow, &port_, port_.bounds, 0);
  host_.Send(message::kHide); // from a window's sleep or before it
}

TEST_F(RenderThreadTest, DrawingBackToBackDoesNotKeepTheHostOut) {
  for (const std::int32_t delay : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    host_.Record()->settings.frameDelay = delay;
    host_.Show(&port_);
    const std::uint64_t first = frames;
    for (int i = 0; i < 200; ++i)
      EXPECT_EQ(host_.SendData(nullptr), 0);
    AwaitFrames(first + 2); // nor the other way round
    host_.Send(message::kHide);
  }
}

TEST_F(RenderThreadTest, SurvivesAStormOfMessages) {
  std::minstd_rand random(7);
  const auto data = std::make_unique<RenderVisualData>();
  data->numSpectrumChannels = 2;
  const auto track = std::make_unique<TrackInfo>();
  PutPascal(track->bytes + kTrackTitleOffset, "title");
  host_.Record()->settings.frameDelay = 0;
  for (int i = 0; i < 1000; ++i) {
    switch (random() % 9) {
    case 0:
      EXPECT_EQ(host_.Show(&port_, random() % 2), 0);
      break;
    case 1:
      EXPECT_EQ(host_.Send(message::kHide), 0);
      break;
    case 2:
      port_.bounds.right = static_cast<std::int16_t>(64 + random() % 2000);
      host_.SendWindow(message::kSetWindow, &port_, port_.bounds, 0);
      break;
    case 3:
      host_.SendTracks(message::kPlay, track.get(), nullptr);
      break;
    case 4:
      host_.SendEvent(kKeyDownEvent, 'c');
      break;
    case 5:
      if (random() % 8 != 0) break;
      host_.Send(message::kCleanup);
      host_.Init();
      host_.Record()->settings.frameDelay = static_cast<std::int32_t>(random() % 100);
      break;
    default:
      data->spectrum[0][random() % 512] = static_cast<std::uint8_t>(random());
      host_.SendData(data.get());
    }
  }
}

} // namespace
} // namespace halvenor
