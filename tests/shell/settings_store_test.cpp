#include "platform/guard.h"
#include "shell/settings_store.h"
#include "tests/shell/shell_test.h"

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SettingsStore : public ShellTest {
protected:
  // What a record holds after 'init' with this block stored.
  Settings Loaded(const Settings& stored, std::size_t size = sizeof(Settings)) {
    host_.storedBlock.resize(size);
    std::memcpy(host_.storedBlock.data(), &stored, size);
    host_.Init();
    const Settings loaded = host_.Record()->settings;
    host_.Send(message::kCleanup);
    return loaded;
  }
  static bool Same(const Settings& a, const Settings& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
  }
  static Settings Odd(std::int32_t version) {
    Settings settings;
    std::memset(&settings, 0xC3, sizeof settings); // not a sensible value in it
    settings.settingsVersion = version;
    return settings;
  }
};

TEST_F(SettingsStore, AFirstRunHasTheDefaults) {
  EXPECT_EQ(host_.Init(), 0);
  EXPECT_TRUE(Same(host_.Record()->settings, DefaultSettings()));
  EXPECT_EQ(host_.Record()->highestActiveBin, 150.0F);
  EXPECT_EQ(host_.Record()->loudness, 0.0F);
  EXPECT_EQ(host_.Record()->trackTextTime + host_.Record()->streamTextTime, 0);
  EXPECT_EQ(host_.Record()->pluginFileSpec.bytes[69], 0x5A);
  EXPECT_THAT(host_.requests, ElementsAre("pspc", "gprf", "sfop"));
  const FullScreenOptionsBody& options = host_.lastRequest.body.fullScreenOptions;
  EXPECT_THAT((std::vector<int>{options.minBitDepth, options.maxBitDepth, options.preferredBitDepth,
                                options.desiredWidth, options.desiredHeight}),
              ElementsAre(16, 32, 32, 640, 480));
  EXPECT_THAT(log_.Take(), IsEmpty());
}

TEST_F(SettingsStore, StoredBlocksAreKeptUpgradedOrReplaced) {
  EXPECT_TRUE(Same(Loaded(Odd(112)), Odd(112)));
  for (const std::int32_t version : {109, 113, 0, -1})
    EXPECT_TRUE(Same(Loaded(Odd(version)), DefaultSettings())) << version;
  EXPECT_THAT(log_.Take(), IsEmpty());

  Settings upgraded = Odd(112);
  upgraded.frameDelay = 10000;
  EXPECT_TRUE(Same(Loaded(Odd(111)), upgraded));
  upgraded.fontSize = 9;
  EXPECT_TRUE(Same(Loaded(Odd(110)), upgraded));
  EXPECT_THAT(log_.Take(), ElementsAre(" Halvenor settings updated from old version",
                                       " Halvenor settings updated from old version"));

  Settings cut{};
  std::memcpy(&cut, &DefaultSettings(), 40);
  EXPECT_TRUE(Same(Loaded(DefaultSettings(), 40), cut)); // the unread tail stays 0
  EXPECT_TRUE(Same(Loaded(DefaultSettings(), 0), DefaultSettings()));
}

TEST_F(SettingsStore, HostErrorsAreLoggedAndDefaultsUsed) {
  host_.answers[request::kGetPluginData] = -43;
  host_.answers[request::kSetFullScreenOptions] = 5;
  host_.answers[request::kGetPluginFileSpec] = -35;
  host_.storedBlock.assign(116, 0);
  host_.storedBlock[0] = host_.storedBlock[3] = 112; // whichever end comes first
  host_.storedBlock.resize(3);
  EXPECT_EQ(host_.Init(), -35); // and yet it completes
  EXPECT_TRUE(Same(host_.Record()->settings, DefaultSettings()));
  const auto lines = log_.Take();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_TRUE(lines[0] == "Halvenor - Reading preferences 112, read 3 bytes, error -43" ||
              lines[0] == "Halvenor - Reading preferences 1879048192, read 3 bytes, error -43");
  EXPECT_EQ(lines[1], "Set Full Screen error - 5");
}

TEST_F(SettingsStore, FullScreenSizesGoAsTheirLowSixteenBits) {
  Settings settings = DefaultSettings();
  settings.fullScreenWidth = 70000;
  settings.fullScreenHeight = -1;
  Loaded(settings);
  EXPECT_EQ(host_.lastRequest.body.fullScreenOptions.desiredWidth, 4464);
  EXPECT_EQ(host_.lastRequest.body.fullScreenOptions.desiredHeight, -1);
}

TEST_F(SettingsStore, TheHostMayReleaseTheRecordWhileItIsAsked) {
  for (const FourCharCode code :
       {request::kGetPluginFileSpec, request::kGetPluginData, request::kSetFullScreenOptions}) {
    host_.inside = {{code, [] {
                       VisualMessage none{};
                       VisualPluginHandler(message::kCleanup, &none, RecordGuard().Record());
                     }}};
    host_.answers[request::kGetPluginFileSpec] = 5;
    EXPECT_EQ(host_.Init(), 5);
    host_.inside.clear();
    EXPECT_EQ(host_.refCon, nullptr);
    EXPECT_EQ(LastReference(), nullptr);
  }
}

} // namespace
} // namespace halvenor
