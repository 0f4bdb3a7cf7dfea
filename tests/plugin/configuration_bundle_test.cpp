// The real plug-in in a bundle of the suite's own, which has a configuration bundle inside, or not.
#include "host/install_paths.h"
#include "platform/debug_log.h"
#include "platform/ports.h"
#include "protocol/settings.h"
#include "tests/support/plain_host.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace halvenor {
namespace {

using testing::ElementsAre;

std::vector<std::string> heard; // lines of the debug log, and alerts

class ConfigurationBundle : public testing::Test {
protected:
  void SetUp() override {
    const fs::path contents = folder_ / "Halvenor.bundle/Contents";
    const fs::path built = InstalledPluginPath() / "Contents";
    fs::create_directories(contents / "Linux");
    fs::copy_file(built / "Info.plist", contents / "Info.plist");
    fs::copy_file(built / "Linux/Halvenor", contents / "Linux/Halvenor");
    inner_ = contents / "Frameworks/CocoaBundle.bundle/Contents";
    debug_log::SetReceiver([](void*, std::string_view line) { heard.emplace_back(line); }, nullptr);
    SetAlertSound([](int ticks) { heard.push_back("alert " + std::to_string(ticks)); });
    host_ = services_.Load(folder_ / "Halvenor.bundle");
    ASSERT_TRUE(host_) << services_.error;
    EXPECT_EQ(host_->Init(), status::kOk);
  }
  void TearDown() override {
    host_.reset();
    SetAlertSound(nullptr);
    debug_log::SetReceiver(nullptr, nullptr);
  }
  std::vector<std::string> Press(char key) {
    heard.clear();
    EXPECT_TRUE(host_->Key(key, false)) << key;
    return heard;
  }
  void PutModule(const fs::path& file) const {
    fs::create_directories(inner_ / "Linux");
    fs::copy_file(file, inner_ / "Linux/CocoaBundle");
  }

  const ScratchFolder folder_;
  fs::path inner_;
  PlainHost services_;
  std::unique_ptr<PluginHost> host_;
};

TEST_F(ConfigurationBundle, IsLookedUpAnewUntilItsModuleCanBeUsed) {
  EXPECT_THAT(Press('s'), ElementsAre(" Can't create bundle", " Can't find initialize function",
                                      " Can't init bundle", "alert 20"));
  fs::create_directories(inner_);
  std::ofstream(inner_ / "Info.plist").put('\n');
  const auto unusable = ElementsAre(" Couldn't load exe", " Can't find initialize function",
                                    " Can't init bundle", "alert 20");
  EXPECT_THAT(Press('r'), unusable) << "no module";
  PutModule(InstalledPluginPath() / "Contents/Info.plist");
  EXPECT_THAT(Press('l'), unusable) << "no module at all";
  fs::remove(inner_ / "Linux/CocoaBundle");
  PutModule(SCRIPTED_CONFIGURATION);

  constexpr char kInitialized[] = "initializeBundle 0 0 0";
  EXPECT_THAT(Press('s'), ElementsAre(kInitialized, "AddPreset"));
  EXPECT_THAT(Press('r'), ElementsAre(kInitialized, "SwitchToManual"));
  EXPECT_THAT(Press('l'),
              ElementsAre(kInitialized, "LogSettings", " Can't call function", "alert 20"));
  float stored[2] = {};
  for (float& intensity : stored) {
    EXPECT_THAT(Press('c'), ElementsAre(kInitialized, "orderWindowFront"));
    Settings block{};
    std::size_t size = 0;
    services_.preferences.Read("Halvenor", std::as_writable_bytes(std::span(&block, 1)), size);
    intensity = block.intensity;
  }
  EXPECT_FLOAT_EQ(stored[1] - stored[0], 0.25F) << "plug-in and module share one guard";
  fs::remove_all(inner_);
  EXPECT_EQ(Press('s').front(), " Can't create bundle");
}

TEST_F(ConfigurationBundle, SaysWhyAHostWithoutItsToolkitHasNoWindow) {
  fs::create_directories(inner_);
  std::ofstream(inner_ / "Info.plist").put('\n');
  PutModule(InstalledPluginPath() /
            "Contents/Frameworks/CocoaBundle.bundle/Contents/Linux/CocoaBundle");
  EXPECT_THAT(
      Press('s'),
      ElementsAre("Halvenor - No settings window: the host runs no Qt application (QApplication)",
                  " Can't init bundle", "alert 20"));
}

} // namespace
} // namespace halvenor
