// The presets that come with the program.
#include "presets/look.h"
#include "presets/preset_library.h"
#include "presets/preset_names.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>
#include <png.h>

#include <set>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

void ExpectPicture(const fs::path& file) {
  png_image picture{};
  picture.version = PNG_IMAGE_VERSION;
  ASSERT_TRUE(png_image_begin_read_from_file(&picture, file.c_str())) << file;
  picture.format = PNG_FORMAT_GRAY;
  std::vector<png_byte> pixels(PNG_IMAGE_SIZE(picture));
  ASSERT_TRUE(png_image_finish_read(&picture, nullptr, pixels.data(), 0, nullptr)) << file;
  EXPECT_GT(std::set<png_byte>(pixels.begin(), pixels.end()).size(), 16u) << file << " is empty";
}

TEST(FactoryPresets, ArePlainlyDifferentAndComplete) {
  PresetLibrary library({"", PresetLibrary::FactoryFolder(BUNDLE)});
  EXPECT_EQ(library.Load(), std::vector<std::string>());
  const std::span<const Preset> presets = library.Presets();
  EXPECT_GE(presets.size(), 24u);
  std::size_t sources = 0;
  for (const auto& entry : fs::directory_iterator(PRESETS_SOURCE))
    if (entry.path().extension() == ".preset") ++sources;
  EXPECT_EQ(presets.size(), sources) << "in the bundle and in the source";

  for (const Preset& preset : presets) {
    EXPECT_EQ(FreshIdFor(preset.name, {}), preset.id);
    const auto written = ReadText(fs::path(PRESETS_SOURCE) / (preset.id + ".preset"));
    EXPECT_NE(written.find("\nname=" + preset.name + "\n"), written.npos)
        << preset.id << " has the name of another";
    EXPECT_TRUE(SameLook(preset.look, TidyLook(preset.look))) << preset.id;
    EXPECT_FALSE(SameLook(preset.look, DefaultSettings())) << preset.id;
    for (const Preset& other : presets)
      EXPECT_EQ(SameLook(preset.look, other.look), &preset == &other) << preset.id << other.id;
    ASSERT_FALSE(preset.picture.empty()) << preset.id << " has no picture";
    ExpectPicture(preset.picture);
  }
}

} // namespace
} // namespace halvenor
