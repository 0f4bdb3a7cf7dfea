// Any 116 bytes are a legal stored block: the real module draws with them and stays in time.
#include "tests/plugin/offscreen_plugin.h"

#include <limits>
#include <random>

namespace halvenor {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

using Log = OffscreenPlugin::Log;

void DrawWith(const Settings& settings, Log log = Log::MustBeEmpty) {
  OffscreenPlugin plugin(settings, 64, 64, log);
  plugin.DeliverFlat(200, 100, 20);
  plugin.Step(2);
}

// A size that no font has is tried again, and reported, at the next opening: the size belongs to
// the process.
void ForgetFontSize() {
  DrawWith(DefaultSettings(), Log::MayComplain);
}

TEST(HostileSettings, EveryFieldAtItsExtremes) {
  for (const SettingField& field : SettingFields()) {
    const bool real = field.type == SettingType::Real || field.type == SettingType::Color;
    for (int extreme = 0; extreme < 3; ++extreme) {
      Settings settings = DefaultSettings();
      settings.glow = 0; // which takes most of the time, and is a field itself
      constexpr float kReals[] = {std::numeric_limits<float>::quiet_NaN(),
                                  std::numeric_limits<float>::infinity(), -3e38F};
      constexpr std::int32_t kIntegers[] = {kMost, kLeast, -5};
      const void* value = real ? static_cast<const void*>(&kReals[extreme])
                               : static_cast<const void*>(&kIntegers[extreme]);
      std::memcpy(reinterpret_cast<char*>(&settings) + field.offset, value, 4);
      SCOPED_TRACE(field.name);
      const bool isFontSize = field.name == "fontSize";
      DrawWith(settings, isFontSize ? Log::MayComplain : Log::MustBeEmpty);
      if (isFontSize) ForgetFontSize();
    }
  }
}

TEST(HostileSettings, RandomBlocks) {
  std::minstd_rand random(11);
  std::minstd_rand flags(8);
  for (int i = 0; i < 10; ++i) {
    Settings settings;
    auto* bytes = reinterpret_cast<unsigned char*>(&settings);
    for (std::size_t k = 0; k < sizeof settings; ++k)
      bytes[k] = static_cast<unsigned char>(random() >> 8);
    settings.settingsVersion = kSettingsVersion;
    // Random bytes alone would switch everything on, and a smoothed zoom of any size draws the
    // whole image 256 times.
    for (const SettingField& field : SettingFields())
      if (field.type == SettingType::Flag && flags() % 3 != 0)
        StoreField<std::int32_t>(settings, field, 0);
    DrawWith(settings, Log::MayComplain);
  }
  ForgetFontSize();
}

} // namespace
} // namespace halvenor
