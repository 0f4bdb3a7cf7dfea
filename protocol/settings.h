// The settings block: what the host stores for the plug-in, and the one table of its fields.
#pragma once

#include "protocol/four_char_code.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace halvenor {

/// A color; each component is meant to lie in 0..1.
struct Color {
  float red;
  float green;
  float blue;
};

inline constexpr std::int32_t kSettingsVersion = 112;

/// A display time of a message line that means "until changed".
inline constexpr std::int32_t kShownUntilChanged = 999999;

/// By this creator code a plug-in says that its stored block is a `Settings`.
inline constexpr FourCharCode kSettingsCreator = Code("hook");

/// The stored block: 116 bytes without gaps, numbers in the machine's own byte order. Flags are 0
/// for off and anything else for on. Any 116 bytes are a legal block: readers must bear every
/// value.
struct Settings {
  std::int32_t settingsVersion;
  float intensity;
  float fade;
  float zoom;
  float zoomRotation; ///< degrees
  float numLines;
  Color innerColor;
  Color outerColor;
  std::int32_t smoothing;
  std::int32_t glow;
  std::int32_t colorCycle;
  std::int32_t sharpOverlay;
  std::int32_t showFrameRate;
  std::int32_t frequencyScale;   ///< 0 linear, 1 square root, 2 logarithmic, 3 blended
  std::int32_t fullScreenWidth;  ///< pixels; the low 16 bits go to the host
  std::int32_t fullScreenHeight; ///< pixels; the low 16 bits go to the host
  float reserved1;
  float reserved2;
  float reserved3;
  std::int32_t trackTextDuration;  ///< milliseconds
  std::int32_t numFrequencyLabels; ///< 0 or less: none
  std::int32_t autopilot;
  std::int32_t verticalLayout;
  std::int32_t fontSize;   ///< pixels
  std::int32_t frameDelay; ///< microseconds
};

static_assert(sizeof(Settings) == 116);
static_assert(offsetof(Settings, innerColor) == 24);
static_assert(offsetof(Settings, smoothing) == 48);
static_assert(offsetof(Settings, frequencyScale) == 68);
static_assert(offsetof(Settings, reserved1) == 80);
static_assert(offsetof(Settings, trackTextDuration) == 92);
static_assert(offsetof(Settings, frameDelay) == 112);

/// The block of a first run, version included.
const Settings& DefaultSettings();

enum class SettingType { Real, Integer, Flag, Color };

/// The groups of the settings window, in its order.
enum class SettingGroup { Picture, Drawing, Colors, Texts, Screen };

/// How the settings window shows an integer that people count in another unit, with one value that
/// means "without end". Its texts are in English, marked for translation.
struct ShownMeasure {
  const char* unit;
  double minimum; ///< in that unit, as the next two
  double maximum;
  double step;
  int decimals;
  double (*fromStored)(double stored);
  double (*toStored)(double shown);
  std::int32_t endless; ///< the stored value
  const char* endlessLabel;
};

/// One field as people meet it: by its name on the command line and in presets, by its label in the
/// settings window.
struct SettingField {
  std::string_view name;
  SettingType type;
  std::size_t offset; ///< bytes from the start of `Settings`
  double minimum;     ///< smallest value offered to a person (a flag: 0, a color: per component)
  double maximum;     ///< largest value offered to a person
  SettingGroup group;
  int row;                    ///< place in the group, from 0
  const char* label;          ///< in English, as the names of the choices; marked for translation
  std::string_view unit = {}; ///< of the stored value; empty where there is none
  bool angle = false;         ///< 0 and 360 are the same
  bool look = false;          ///< part of what a preset holds
  /// Names of the values from `minimum` on; empty where numbers are what people know.
  std::span<const char* const> choices = {};
  const ShownMeasure* measure = nullptr; ///< null: shown as it is stored
};

/// The name of `group` for people, in English.
const char* GroupTitle(SettingGroup group);

/// Under this context the titles, labels and other texts of the table are marked for translation.
inline constexpr char kSettingTextContext[] = "halvenor::SettingField";

/// Every field that means something to a person, in stored order (the version and the reserved
/// words are left out).
std::span<const SettingField> SettingFields();

/// The bytes of `field` in a block as a `Value` of their size, whatever they hold.
template <typename Value>
Value ReadField(const Settings& settings, const SettingField& field) {
  Value value;
  std::memcpy(&value, reinterpret_cast<const char*>(&settings) + field.offset, sizeof value);
  return value;
}

template <typename Value>
void StoreField(Settings& settings, const SettingField& field, const Value& value) {
  std::memcpy(reinterpret_cast<char*>(&settings) + field.offset, &value, sizeof value);
}

/// The field called `name` (exact spelling), or null.
const SettingField* FindSetting(std::string_view name);

/// Sets `field` from `text`: a number, "on"/"off", "true"/"false", "yes"/"no", "enabled"/"disabled"
/// or 1/0 for a flag, "R,G,B" for a color, the name of a choice in any case. On failure returns
/// what is wrong, ready to be shown, and leaves `settings` as it was. Values outside the field's
/// range are refused.
std::optional<std::string> SetFromText(Settings& settings, const SettingField& field,
                                       std::string_view text);

/// The value of `field` as `SetFromText` reads it back exactly.
std::string ToText(const Settings& settings, const SettingField& field);

} // namespace halvenor
