#include "presets/look.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace halvenor {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// A block that differs from the defaults in every field.
Settings Opposite() {
  Settings other{};
  for (const SettingField& field : SettingFields())
    for (const char* const text : {"0", "1", "64", "off", "on", "0,0,0"}) {
      Settings one{};
      if (SetFromText(one, field, text) || ToText(one, field) == ToText(DefaultSettings(), field))
        continue;
      SetFromText(other, field, text);
    }
  return other;
}

TEST(Look, IsWhatAPresetHoldsAndNothingElse) {
  const Settings other = Opposite();
  Settings block = DefaultSettings();
  CopyLook(other, block);
  EXPECT_TRUE(SameLook(block, other));
  for (const SettingField& field : SettingFields()) {
    EXPECT_EQ(ToText(block, field) == ToText(other, field), field.look) << field.name;
    Settings one = DefaultSettings();
    SetFromText(one, field, ToText(other, field));
    EXPECT_EQ(SameLook(one, DefaultSettings()), !field.look) << field.name;
  }
  Settings strange = DefaultSettings();
  strange.zoom = kNan;
  EXPECT_TRUE(SameLook(strange, strange));
}

TEST(Look, BlendsEachKindInItsWay) {
  const struct {
    const char* field;
    const char* from;
    const char* to;
    double part;
    const char* between;
  } cases[] = {
      {"fade", "0", "1", 0.25, "0.25"},
      {"numLines", "100", "0", 0.5, "50"},
      {"zoomRotation", "350", "10", 0.25, "355"}, // over the top
      {"zoomRotation", "10", "350", 0.75, "355"},
      {"zoomRotation", "20", "60", 0.5, "40"},
      {"zoomRotation", "0", "360", 0.5, "0"},
      {"innerColor", "1,0,0.5", "0,0.5,0.5", 0.5, "0.5,0.25,0.5"},
      {"glow", "off", "on", 0.49, "off"},
      {"glow", "off", "on", 0.5, "on"},
      {"frequencyScale", "0", "3", 0.49, "0"},
      {"frequencyScale", "0", "3", 0.51, "3"},
      {"fade", "0.2", "0.9", -1, "0.2"},
      {"fade", "0.2", "0.9", 7, "0.9"},
      {"fade", "0.2", "0.9", std::nan(""), "0.2"},
      {"zoomRotation", "5", "360", 1, "360"},
      {"fontSize", "5", "50", 0.9, "5"}, // no part of the look
  };
  for (const auto& [name, fromText, toText, part, between] : cases) {
    const SettingField& field = *FindSetting(name);
    Settings from = DefaultSettings();
    Settings to = DefaultSettings();
    ASSERT_EQ(SetFromText(from, field, fromText), std::nullopt);
    ASSERT_EQ(SetFromText(to, field, toText), std::nullopt);
    EXPECT_EQ(ToText(BlendLooks(from, to, part), field), between) << name << " " << part;
  }
}

// Any 116 bytes are a legal block, and what is kept of it must be readable again.
TEST(Look, TidiesWhatNoFieldTakes) {
  Settings wild = DefaultSettings();
  wild.intensity = kNan;
  wild.fade = -3;
  wild.zoomRotation = -10;
  wild.numLines = std::numeric_limits<float>::infinity();
  wild.innerColor = {-1, 2, kNan};
  wild.glow = -77;
  wild.frequencyScale = 99;
  wild.fontSize = 50;
  const Settings tidy = TidyLook(wild);
  for (const SettingField& field : SettingFields()) {
    Settings scratch{};
    EXPECT_EQ(SetFromText(scratch, field, ToText(tidy, field)), std::nullopt);
  }
  EXPECT_EQ(tidy.intensity, DefaultSettings().intensity);
  EXPECT_EQ(tidy.zoomRotation, 350);
  EXPECT_EQ(tidy.numLines, 100);
  EXPECT_EQ(tidy.innerColor.green, 1);
  EXPECT_EQ(tidy.frequencyScale, 3);
  EXPECT_EQ(tidy.fontSize, DefaultSettings().fontSize);
}

} // namespace
} // namespace halvenor
