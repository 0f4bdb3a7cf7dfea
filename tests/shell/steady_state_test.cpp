// Once a show runs, it takes no memory: an allocation in a frame can wait for another thread's.
#include "tests/shell/shell_test.h"
#include "tests/stand_ins/allocation_counter.h"

#include <algorithm>
#include <memory>

namespace halvenor {
namespace {

using stand_ins::AllocationsOfThisThread;

constexpr int kDeliveries = 100;
constexpr int kFramesPerDelivery = 3;
constexpr std::uint64_t kFrameInterval = 1000000000 / 60;

using SteadyStateTest = ShellTest;

TEST_F(SteadyStateTest, FramesAndDeliveriesAllocateNothing) {
  stand_ins::SetSilent(true);
  clock::UseStepped(kFrameInterval);
  host_.Init();
  Settings& settings = host_.Record()->settings; // nothing of a frame is left out
  settings.colorCycle = settings.sharpOverlay = settings.showFrameRate = 1;
  settings.numFrequencyLabels = 10;
  ASSERT_EQ(host_.Show(&port_), 0);
  ASSERT_EQ(clock::WaitUntilParked(), clock::StepResult::Frame);

  // What the render thread has allocated by the end of the first drawing into a buffer or the
  // window, and of the last.
  static std::uint64_t first;
  static std::uint64_t last;
  static int swaps;
  swaps = 0;
  stand_ins::OnCall("aglSwapBuffers", [] {
    last = AllocationsOfThisThread();
    if (swaps++ == 0) first = last;
  });

  const auto data = std::make_unique<RenderVisualData>();
  data->numSpectrumChannels = 2;
  const std::uint64_t before = AllocationsOfThisThread();
  for (int delivery = 0; delivery < kDeliveries; ++delivery) {
    std::fill_n(data->spectrum[delivery % 2], 256, static_cast<std::uint8_t>(delivery * 2));
    settings.frequencyScale = delivery % 4;
    host_.SendData(data.get());
    for (int frame = 0; frame < kFramesPerDelivery; ++frame)
      clock::Step(clock::Now() + kFrameInterval);
  }
  EXPECT_EQ(AllocationsOfThisThread(), before);
  // One for the feedback image, four for the blur and one for the window.
  EXPECT_EQ(swaps, kDeliveries * kFramesPerDelivery * 6);
  EXPECT_EQ(last, first);
}

} // namespace
} // namespace halvenor
