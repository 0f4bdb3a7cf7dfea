#include "protocol/records.h"
#include "protocol/settings.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <map>
#include <set>
#include <string>

namespace halvenor {
namespace {

// The block of a first run, word by word as it is stored on the machine of the published format.
constexpr std::uint32_t kStoredDefaults[] = {
    0x00000070, 0x3EACA6A8, 0x3E525B31, 0x3F333333, 0x41200000, 0x42080000, 0x3EBC9236, 0x3F3A5109,
    0x3F7EFEF8, 0x3F800000, 0x3F2E3593, 0x3E8E772D, 0x00000001, 0x00000001, 0x00000000, 0x00000000,
    0x00000001, 0x00000001, 0x00000280, 0x000001E0, 0x3F800000, 0x3F800000, 0x3F800000, 0x00000BB8,
    0x0000000A, 0x00000000, 0x00000000, 0x00000009, 0x00002710};
static_assert(sizeof kStoredDefaults == sizeof(Settings));

TEST(Settings, DefaultsHaveThePublishedBytes) {
  unsigned char bytes[sizeof(Settings)];
  std::memcpy(bytes, &DefaultSettings(), sizeof bytes);
  for (std::size_t i = 0; i < std::size(kStoredDefaults); ++i) {
    std::uint32_t published = 0; // most significant byte first, unless this machine swaps
    for (std::size_t k = 0; k < 4; ++k) {
      const std::size_t at = std::endian::native == std::endian::big ? k : 3 - k;
      published = published << 8 | bytes[4 * i + at];
    }
    EXPECT_EQ(published, kStoredDefaults[i]) << "word at byte " << 4 * i;
  }
}

TEST(Settings, TableCoversEveryMeaningfulWordAndRowOnce) {
  std::map<std::size_t, int> covered;
  for (const SettingField& field : SettingFields()) {
    const int words = field.type == SettingType::Color ? 3 : 1;
    for (int word = 0; word < words; ++word)
      ++covered[field.offset + 4 * static_cast<std::size_t>(word)];
    EXPECT_EQ(FindSetting(field.name), &field);
  }
  for (std::size_t byte = 0; byte < sizeof(Settings); byte += 4) {
    const bool hidden = byte == 0 || (byte >= 80 && byte < 92); // the version, the reserved words
    EXPECT_EQ(covered[byte], hidden ? 0 : 1) << "word at byte " << byte;
  }
  std::map<SettingGroup, std::set<int>> rows;
  for (const SettingField& field : SettingFields())
    EXPECT_TRUE(rows[field.group].insert(field.row).second) << field.name;
  for (const auto& [group, places] : rows)
    EXPECT_EQ(*places.rbegin() + 1, static_cast<int>(places.size())) << GroupTitle(group);
  EXPECT_EQ(FindSetting("Intensity"), nullptr);
  EXPECT_EQ(FindSetting(""), nullptr);
}

TEST(Settings, TextRoundTripsThroughEveryField) {
  const std::map<SettingType, std::string> samples = {{SettingType::Real, "0.1"},
                                                      {SettingType::Integer, "3"},
                                                      {SettingType::Flag, "on"},
                                                      {SettingType::Color, "0.25,1,0.333333"}};
  for (const SettingField& field : SettingFields()) {
    Settings settings{};
    std::string text = samples.at(field.type);
    if (field.minimum > 3) text = "64"; // sizes
    EXPECT_EQ(SetFromText(settings, field, text), std::nullopt) << field.name;
    EXPECT_EQ(ToText(settings, field), text) << field.name;
    Settings defaults{};
    EXPECT_EQ(SetFromText(defaults, field, ToText(DefaultSettings(), field)), std::nullopt);
    EXPECT_EQ(ToText(defaults, field), ToText(DefaultSettings(), field)) << field.name;
  }
}

TEST(Settings, ChoicesAreTakenByName) {
  const SettingField& scale = *FindSetting("frequencyScale");
  ASSERT_EQ(static_cast<double>(scale.choices.size()), scale.maximum - scale.minimum + 1);
  const struct {
    const char* text;
    std::int32_t value;
  } cases[] = {{"linear", 0}, {"Square root", 1}, {"LOGARITHMIC", 2}, {"Blended", 3}};
  for (const auto& [text, value] : cases) {
    Settings settings{};
    EXPECT_EQ(SetFromText(settings, scale, text), std::nullopt);
    EXPECT_EQ(settings.frequencyScale, value) << text;
  }
}

TEST(Settings, RefusesWhatDoesNotFit) {
  const struct {
    const char* name;
    const char* text;
  } cases[] = {
      {"intensity", ""},      {"intensity", "a lot"},  {"intensity", "0.5x"},
      {"intensity", "nan"},   {"intensity", "1.5"},    {"intensity", "-0.1"},
      {"numLines", "1e9"},    {"fontSize", "9.5"},     {"fontSize", "1000000000"},
      {"fontSize", "-5"},     {"frequencyScale", "4"}, {"frequencyScale", "Line"},
      {"glow", "maybe"},      {"innerColor", "1,0"},   {"innerColor", "1,0,0,0"},
      {"innerColor", "1,,0"}, {"innerColor", "0,0,2"}, {"frameDelay", "99999999999999999999"},
  };
  for (const auto& [name, text] : cases) {
    Settings settings = DefaultSettings();
    const auto error = SetFromText(settings, *FindSetting(name), text);
    ASSERT_TRUE(error.has_value()) << name << "=" << text;
    EXPECT_NE(error->find(name), std::string::npos);
    EXPECT_EQ(std::memcmp(&settings, &DefaultSettings(), sizeof settings), 0) << name;
  }
}

TEST(FourCharCodes, PutTheFirstCharacterInTheTopByte) {
  EXPECT_EQ(message::kInit, 0x696E6974U);
  EXPECT_EQ(message::kCleanup, 0x636C7220U);
}

} // namespace
} // namespace halvenor
