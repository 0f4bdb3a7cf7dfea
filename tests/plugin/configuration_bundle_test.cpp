// The real plug-in in a bundle of the suite's own, which has a configuration bundle inside, or not.
#include "host/install_paths.h"
#include "platform/debug_log.h"
#include "platform/ports.h"
#include "tests/support/plain_host.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

std::vector<std::string> heard; // lines of the debug log, and alerts

TEST(ConfigurationBundle, IsLookedUpAnewUntilItsModuleCanBeUsed) {
  const ScratchFolder folder;
  const fs::path contents = folder / "Halvenor.bundle/Contents";
  const fs::path inner = contents / "Frameworks/CocoaBundle.bundle/Contents";
  const auto put = [&](const char* built, const fs::path& file) {
    fs::create_directories(file.parent_path());
    fs::copy_file(InstalledPluginPath() / "Contents" / built, file,
                  fs::copy_options::overwrite_existing);
  };
  put("Info.plist", contents / "Info.plist");
  put("Linux/Halvenor", contents / "Linux/Halvenor");
  PlainHost services;
  const auto host = services.Load(folder / "Halvenor.bundle");
  ASSERT_TRUE(host) << services.error;
  EXPECT_EQ(host->Init(), status::kOk);
  debug_log::SetReceiver([](void*, std::string_view line) { heard.emplace_back(line); }, nullptr);
  SetAlertSound([](int ticks) { heard.push_back("alert " + std::to_string(ticks)); });
  const auto press = [&](char key) {
    heard.clear();
    EXPECT_TRUE(host->Key(key, false)) << key;
    return heard;
  };

  EXPECT_THAT(press('s'), ElementsAre(" Can't create bundle", " Can't find initialize function",
                                      " Can't init bundle", "alert 20"));
  WriteText(inner / "Info.plist", "\n");
  const auto unusable = ElementsAre(" Couldn't load exe", " Can't find initialize function",
                                    " Can't init bundle", "alert 20");
  EXPECT_THAT(press('r'), unusable) << "no module";
  put("Info.plist", inner / "Linux/CocoaBundle");
  EXPECT_THAT(press('l'), unusable) << "no module at all";
  put("Frameworks/CocoaBundle.bundle/Contents/Linux/CocoaBundle", inner / "Linux/CocoaBundle");
  EXPECT_THAT(
      press('c'),
      ElementsAre("Halvenor - No settings window: the host runs no Qt application (QApplication)",
                  " Can't init bundle", "alert 20"));
  SetAlertSound(nullptr);
  debug_log::SetReceiver(nullptr, nullptr);
}

} // namespace
} // namespace halvenor
