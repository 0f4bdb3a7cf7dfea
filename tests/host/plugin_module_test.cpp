#include "host/install_paths.h"
#include "host/plugin_module.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class PluginModuleTest : public testing::Test {
protected:
  PluginModuleTest() {
    fs::create_directories(folder_ / "Good.bundle/Contents/Linux");
    fs::copy_file(FAKE_PLUGIN, folder_ / "Good.bundle/Contents/Linux/Good");
    fs::create_directory(folder_ / "Empty.bundle");
    std::ofstream(folder_ / "text") << std::string(5000, 'x');
    // The module's own loader text must not be trusted with the current folder.
    previous_ = fs::current_path();
    fs::current_path(folder_);
  }
  ~PluginModuleTest() override { fs::current_path(previous_); }

  const ScratchFolder scratch_;
  const fs::path& folder_ = scratch_.Path();
  fs::path previous_;
};

TEST_F(PluginModuleTest, LoadsBundlesAndFiles) {
  std::string error;
  for (const fs::path& path :
       {fs::path(FAKE_PLUGIN), folder_ / "Good.bundle", folder_ / "Good.bundle/",
        fs::path("Good.bundle"), fs::path("Good.bundle/Contents/Linux/Good")}) {
    const auto module = PluginModule::Load(path, error);
    ASSERT_TRUE(module) << error;
    EXPECT_NE(module->Entry(), nullptr);
    EXPECT_TRUE(module->Path().is_absolute());
  }
}

TEST_F(PluginModuleTest, SaysInOneLineWhyNot) {
  const struct {
    const char* path;
    const char* reason;
  } cases[] = {
      {"missing.bundle", "No such file"},
      {"Empty.bundle", "not a plug-in bundle"},
      {"text", "invalid ELF header"},
      {"/dev/null", "neither a folder nor a file"},
      {PLATFORM_LIBRARY, "not a visualizer plug-in"},
  };
  for (const auto& [path, reason] : cases) {
    std::string error;
    EXPECT_FALSE(PluginModule::Load(path, error)) << path;
    EXPECT_THAT(error,
                AllOf(HasSubstr(path), testing::ContainsRegex(reason), Not(HasSubstr("\n"))));
  }
}

TEST(InstallPaths, StartFromTheProgram) {
  const fs::path folder = ExecutableFolder();
  EXPECT_TRUE(fs::exists(folder / "halvenor_host_test"));
  EXPECT_EQ(InstalledPluginPath(), folder.parent_path() / "lib/halvenor/Halvenor.bundle");
}

} // namespace
} // namespace halvenor
