// Frames that nobody sees: the real module, each show in a process of its own, since its random
// draws and its color cycle go on for the life of one.
#include "tests/plugin/offscreen_plugin.h"

#include <algorithm>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace halvenor {
namespace {

constexpr int kWidth = 160;
constexpr int kHeight = 120;

/// What `show` returns, in a process of its own.
std::string InAProcess(const std::function<std::string()>& show) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  const pid_t process = fork();
  if (process == 0) {
    const std::string result = show();
    for (std::size_t sent = 0; sent < result.size();) {
      const ssize_t part = write(ends[1], result.data() + sent, result.size() - sent);
      if (part <= 0) break;
      sent += static_cast<std::size_t>(part);
    }
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  close(ends[1]);
  std::string result;
  char part[4096];
  for (ssize_t size = 0; (size = read(ends[0], part, sizeof part)) > 0;)
    result.append(part, static_cast<std::size_t>(size));
  close(ends[0]);
  int ended = -1;
  EXPECT_EQ(waitpid(process, &ended, 0), process);
  EXPECT_EQ(ended, 0);
  return result;
}

/// All that may move a picture.
Settings LivelyLook() {
  Settings settings = DefaultSettings();
  settings.colorCycle = 1;
  settings.sharpOverlay = 1;
  settings.smoothing = 1;
  settings.glow = 1;
  settings.showFrameRate = 1;
  settings.numFrequencyLabels = 5;
  settings.autopilot = 1;
  return settings;
}

std::string Picture(const OffscreenPlugin& plugin) {
  const std::vector<std::uint8_t>& pixels = plugin.Pixels();
  EXPECT_GT(plugin.LitPixels(0, 0, kWidth, kHeight), 100);
  return {pixels.begin(), pixels.end()};
}

void DeliverSome(OffscreenPlugin& plugin, int frame) {
  if (frame % 3 == 0)
    plugin.DeliverFlat(static_cast<std::uint8_t>(200 - 2 * frame),
                       static_cast<std::uint8_t>(80 + 3 * (frame % 40)), 1);
}

// The pictures of some frames, the others being for `use`.
std::string SomePictures(HalvenorFrameUse use) {
  OffscreenPlugin plugin(LivelyLook(), kWidth, kHeight);
  std::string pictures;
  for (int frame = 0; frame < 61; ++frame) {
    DeliverSome(plugin, frame);
    const bool isWanted = frame == 3 || frame == 20 || frame == 21 || frame == 60;
    if (isWanted || use == kHalvenorFrameSeen)
      plugin.Step();
    else
      plugin.StepUnseen(use);
    if (isWanted) pictures += Picture(plugin);
  }
  return pictures;
}

TEST(UnseenFrames, TrailsAreThoseOfSeenOnes) {
  const auto pictures = [](HalvenorFrameUse use) {
    return InAProcess([use] { return SomePictures(use); });
  };
  const std::string seen = pictures(kHalvenorFrameSeen);
  EXPECT_EQ(seen.size(), std::size_t{4 * 4 * kWidth * kHeight});
  EXPECT_TRUE(seen == pictures(kHalvenorFrameTrailsOnly));
  EXPECT_FALSE(seen == pictures(kHalvenorFrameUndrawn)) << "there were no trails to compare";
}

// The pictures after `frames` for `use`, none of which can be seen in them.
std::string PicturesAfter(int frames, HalvenorFrameUse use, bool autopilot) {
  Settings settings = LivelyLook();
  settings.autopilot = 0;
  if (!autopilot) settings.fade = 1.0F;
  // Keys may look for a configuration bundle that is not there.
  OffscreenPlugin plugin(settings, kWidth, kHeight, OffscreenPlugin::Log::MayComplain);
  plugin.Play("Some title");
  plugin.Press(autopilot ? 'a' : 'i'); // a message for some time, or a panel
  for (int frame = 0; frame < frames; ++frame) {
    DeliverSome(plugin, frame);
    if (use == kHalvenorFrameSeen)
      plugin.Step();
    else
      plugin.StepUnseen(use);
    if (frame == 50) plugin.Press(autopilot ? 'r' : 'h');
  }
  if (autopilot) plugin.ShowAgain(); // without what the autopilot leaves of trails
  std::string pictures;
  for (int i = 0; i < 3; ++i) {
    plugin.Step();
    pictures += Picture(plugin);
  }
  return pictures;
}

TEST(UnseenFrames, AllElseGoesOnWhereNothingIsDrawn) {
  for (const bool autopilot : {false, true}) {
    const auto pictures = [autopilot](int frames, HalvenorFrameUse use) {
      return InAProcess([=] { return PicturesAfter(frames, use, autopilot); });
    };
    const std::string seen = pictures(80, kHalvenorFrameSeen);
    EXPECT_TRUE(seen == pictures(80, kHalvenorFrameUndrawn)) << autopilot;
    EXPECT_FALSE(seen == pictures(79, kHalvenorFrameUndrawn)) << autopilot;
  }
}

} // namespace
} // namespace halvenor
