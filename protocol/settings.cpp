#include "protocol/settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace halvenor {
namespace {

constexpr Settings kDefaults = {
    .settingsVersion = kSettingsVersion,
    .intensity = 0.337209F,
    .fade = 0.205426F,
    .zoom = 0.7F,
    .zoomRotation = 10.0F,
    .numLines = 34.0F,
    .innerColor = {0.368303F, 0.727799F, 0.996078F},
    .outerColor = {1.0F, 0.680505F, 0.278253F},
    .smoothing = 1,
    .glow = 1,
    .colorCycle = 0,
    .sharpOverlay = 0,
    .showFrameRate = 1,
    .frequencyScale = 1,
    .fullScreenWidth = 640,
    .fullScreenHeight = 480,
    .reserved1 = 1.0F,
    .reserved2 = 1.0F,
    .reserved3 = 1.0F,
    .trackTextDuration = 3000,
    .numFrequencyLabels = 10,
    .autopilot = 0,
    .verticalLayout = 0,
    .fontSize = 9,
    .frameDelay = 10000,
};

constexpr std::string_view kFrequencyScales[] = {"Linear", "Square root", "Logarithmic", "Blended"};

#define HALVENOR_FIELD(name) #name, offsetof(Settings, name)
constexpr SettingField Field(std::string_view name, std::size_t offset, SettingType type,
                             double minimum, double maximum, std::string_view label,
                             std::string_view unit = "") {
  return {name, type, offset, minimum, maximum, label, unit, false, {}};
}

constexpr SettingField Look(SettingField field, std::span<const std::string_view> choices = {}) {
  field.look = true;
  field.choices = choices;
  return field;
}

constexpr std::array kFields = {
    Look(Field(HALVENOR_FIELD(intensity), SettingType::Real, 0, 1, "Intensity")),
    Look(Field(HALVENOR_FIELD(fade), SettingType::Real, 0, 1, "Fade")),
    Look(Field(HALVENOR_FIELD(zoom), SettingType::Real, 0, 1, "Zoom")),
    Look(
        Field(HALVENOR_FIELD(zoomRotation), SettingType::Real, 0, 360, "Zoom Rotation", "degrees")),
    Look(Field(HALVENOR_FIELD(numLines), SettingType::Real, 0, 100, "Num Lines")),
    Look(Field(HALVENOR_FIELD(innerColor), SettingType::Color, 0, 1, "Inner Color")),
    Look(Field(HALVENOR_FIELD(outerColor), SettingType::Color, 0, 1, "Outer Color")),
    Look(Field(HALVENOR_FIELD(smoothing), SettingType::Flag, 0, 1, "Smoothing")),
    Look(Field(HALVENOR_FIELD(glow), SettingType::Flag, 0, 1, "Glow")),
    Look(Field(HALVENOR_FIELD(colorCycle), SettingType::Flag, 0, 1, "Color Cycle")),
    Look(Field(HALVENOR_FIELD(sharpOverlay), SettingType::Flag, 0, 1, "Sharp Overlay")),
    Field(HALVENOR_FIELD(showFrameRate), SettingType::Flag, 0, 1, "Show Frame Rate"),
    Look(Field(HALVENOR_FIELD(frequencyScale), SettingType::Integer, 0, 3, "Frequency Scale"),
         kFrequencyScales),
    Field(HALVENOR_FIELD(fullScreenWidth), SettingType::Integer, 64, 32767, "Full Screen Width",
          "pixels"),
    Field(HALVENOR_FIELD(fullScreenHeight), SettingType::Integer, 64, 32767, "Full Screen Height",
          "pixels"),
    Field(HALVENOR_FIELD(trackTextDuration), SettingType::Integer, 0, 999999, "Title Duration",
          "milliseconds"),
    Field(HALVENOR_FIELD(numFrequencyLabels), SettingType::Integer, 0, 100, "Frequency Labels"),
    Field(HALVENOR_FIELD(autopilot), SettingType::Flag, 0, 1, "Autopilot"),
    Look(Field(HALVENOR_FIELD(verticalLayout), SettingType::Flag, 0, 1, "Vertical Layout")),
    Field(HALVENOR_FIELD(fontSize), SettingType::Integer, 5, 128, "Font Size", "pixels"),
    Field(HALVENOR_FIELD(frameDelay), SettingType::Integer, 0, 1000000, "Frame Delay",
          "microseconds"),
};
#undef HALVENOR_FIELD

struct FlagWord {
  std::string_view word;
  std::int32_t value;
};
constexpr FlagWord kFlagWords[] = {{"on", 1},      {"off", 0},     {"true", 1}, {"false", 0},
                                   {"yes", 1},     {"no", 0},      {"1", 1},    {"0", 0},
                                   {"enabled", 1}, {"disabled", 0}};

template <typename Number>
std::optional<Number> Parse(std::string_view text) {
  Number value{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return value;
}

template <typename Number>
std::string Print(Number value) {
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, result.ptr};
}

bool EqualInAnyCase(std::string_view one, std::string_view other) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [&](char a, char b) { return lower(a) == lower(b); });
}

std::string Wanted(const SettingField& field, std::string_view text) {
  const std::string range = Print(field.minimum) + " to " + Print(field.maximum);
  std::string message = std::string(field.name) + " takes ";
  switch (field.type) {
  case SettingType::Flag:
    message += "on or off";
    break;
  case SettingType::Color:
    message += "three numbers R,G,B from " + range;
    break;
  case SettingType::Integer:
    for (const std::string_view choice : field.choices)
      message += std::string(choice) + ", ";
    message += (field.choices.empty() ? "a whole number from " : "or a number from ") + range;
    break;
  case SettingType::Real:
    message += "a number from " + range;
    break;
  }
  if (!field.unit.empty()) message += " (" + std::string(field.unit) + ")";
  return message + ", not \"" + std::string(text) + "\"";
}

bool InRange(const SettingField& field, double value) {
  return value >= field.minimum && value <= field.maximum; // false for NaN
}

std::optional<float> ParseReal(const SettingField& field, std::string_view text) {
  const auto value = Parse<float>(text);
  return value && InRange(field, *value) ? value : std::nullopt;
}

std::optional<Color> ParseColor(const SettingField& field, std::string_view text) {
  float components[3];
  for (int i = 0; i < 3; ++i) {
    const std::size_t comma = i < 2 ? text.find(',') : text.size();
    if (comma == std::string_view::npos) return std::nullopt;
    const auto component = ParseReal(field, text.substr(0, comma));
    if (!component) return std::nullopt;
    components[i] = *component;
    if (i < 2) text.remove_prefix(comma + 1);
  }
  return Color{components[0], components[1], components[2]};
}

std::optional<std::int32_t> ParseInteger(const SettingField& field, std::string_view text) {
  for (std::size_t i = 0; i < field.choices.size(); ++i)
    if (EqualInAnyCase(field.choices[i], text))
      return static_cast<std::int32_t>(field.minimum) + static_cast<std::int32_t>(i);
  const auto value = Parse<std::int32_t>(text);
  return value && InRange(field, *value) ? value : std::nullopt;
}

std::optional<std::int32_t> ParseFlag(const SettingField&, std::string_view text) {
  for (const FlagWord& entry : kFlagWords)
    if (entry.word == text) return entry.value;
  return std::nullopt;
}

template <typename Value>
bool Store(Settings& settings, const SettingField& field, const std::optional<Value>& value) {
  if (!value) return false;
  StoreField(settings, field, *value);
  return true;
}

} // namespace

const Settings& DefaultSettings() {
  return kDefaults;
}

std::span<const SettingField> SettingFields() {
  return kFields;
}

const SettingField* FindSetting(std::string_view name) {
  for (const SettingField& field : kFields)
    if (field.name == name) return &field;
  return nullptr;
}

std::optional<std::string> SetFromText(Settings& settings, const SettingField& field,
                                       std::string_view text) {
  bool stored = false;
  switch (field.type) {
  case SettingType::Real:
    stored = Store(settings, field, ParseReal(field, text));
    break;
  case SettingType::Integer:
    stored = Store(settings, field, ParseInteger(field, text));
    break;
  case SettingType::Flag:
    stored = Store(settings, field, ParseFlag(field, text));
    break;
  case SettingType::Color:
    stored = Store(settings, field, ParseColor(field, text));
    break;
  }
  if (!stored) return Wanted(field, text);
  return std::nullopt;
}

std::string ToText(const Settings& settings, const SettingField& field) {
  switch (field.type) {
  case SettingType::Real:
    return Print(ReadField<float>(settings, field));
  case SettingType::Integer:
    return Print(ReadField<std::int32_t>(settings, field));
  case SettingType::Flag:
    return ReadField<std::int32_t>(settings, field) != 0 ? "on" : "off";
  case SettingType::Color:
    break;
  }
  const auto color = ReadField<Color>(settings, field);
  return Print(color.red) + "," + Print(color.green) + "," + Print(color.blue);
}

} // namespace halvenor
