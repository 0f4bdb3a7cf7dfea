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

// The name by which the translation tools find a text.
#define QT_TRANSLATE_NOOP(context, text) text

constexpr const char* kGroupTitles[] = {
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Picture"),
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Drawing"),
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Colors"),
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Texts"),
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Screen"),
};

constexpr const char* kFrequencyScales[] = {
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Linear"),
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Square root"),
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Logarithmic"),
    QT_TRANSLATE_NOOP("halvenor::SettingField", "Blended"),
};

constexpr ShownMeasure kTitleSeconds = {
    .unit = QT_TRANSLATE_NOOP("halvenor::SettingField", "s"),
    .minimum = 0,
    .maximum = 999,
    .step = 0.5,
    .decimals = 1,
    .fromStored = [](double milliseconds) { return milliseconds / 1000; },
    .toStored = [](double seconds) { return seconds * 1000; },
    .endless = kShownUntilChanged,
    .endlessLabel = QT_TRANSLATE_NOOP("halvenor::SettingField", "Always"),
};

constexpr ShownMeasure kFramesPerSecond = {
    .unit = QT_TRANSLATE_NOOP("halvenor::SettingField", "fps"),
    .minimum = 1,
    .maximum = 1000,
    .step = 5,
    .decimals = 0,
    .fromStored = [](double microseconds) { return 1e6 / microseconds; },
    .toStored = [](double rate) { return 1e6 / rate; },
    .endless = 0,
    .endlessLabel = QT_TRANSLATE_NOOP("halvenor::SettingField", "Unlimited"),
};

// What a field has beyond the ordinary.
struct Extras {
  std::string_view unit = {};
  bool angle = false;
  bool look = false;
  std::span<const char* const> choices = {};
  const ShownMeasure* measure = nullptr;
};
constexpr Extras kLook = {.look = true};

#define HALVENOR_FIELD(name) #name, offsetof(Settings, name)
constexpr SettingField Field(std::string_view name, std::size_t offset, SettingType type,
                             double minimum, double maximum, SettingGroup group, int row,
                             const char* label, const Extras& extras = {}) {
  return {name,  type,        offset,       minimum,     maximum,        group,         row,
          label, extras.unit, extras.angle, extras.look, extras.choices, extras.measure};
}

using enum SettingGroup;

constexpr std::array kFields = {
    Field(HALVENOR_FIELD(intensity), SettingType::Real, 0, 1, Picture, 0,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Intensity"), kLook),
    Field(HALVENOR_FIELD(fade), SettingType::Real, 0, 1, Picture, 1,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Fade"), kLook),
    Field(HALVENOR_FIELD(zoom), SettingType::Real, 0, 1, Picture, 2,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Zoom"), kLook),
    Field(HALVENOR_FIELD(zoomRotation), SettingType::Real, 0, 360, Picture, 3,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Zoom Rotation"),
          {.unit = "degrees", .angle = true, .look = true}),
    Field(HALVENOR_FIELD(numLines), SettingType::Real, 0, 100, Picture, 4,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Lines"), kLook),
    Field(HALVENOR_FIELD(innerColor), SettingType::Color, 0, 1, Colors, 0,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Inner Color"), kLook),
    Field(HALVENOR_FIELD(outerColor), SettingType::Color, 0, 1, Colors, 1,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Outer Color"), kLook),
    Field(HALVENOR_FIELD(smoothing), SettingType::Flag, 0, 1, Drawing, 1,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Smoothing"), kLook),
    Field(HALVENOR_FIELD(glow), SettingType::Flag, 0, 1, Drawing, 2,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Glow"), kLook),
    Field(HALVENOR_FIELD(colorCycle), SettingType::Flag, 0, 1, Colors, 2,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Color Cycle"), kLook),
    Field(HALVENOR_FIELD(sharpOverlay), SettingType::Flag, 0, 1, Drawing, 3,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Sharp Overlay"), kLook),
    Field(HALVENOR_FIELD(showFrameRate), SettingType::Flag, 0, 1, Texts, 3,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Show Frame Rate")),
    Field(HALVENOR_FIELD(frequencyScale), SettingType::Integer, 0, 3, Drawing, 0,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Frequency Scale"),
          {.look = true, .choices = kFrequencyScales}),
    Field(HALVENOR_FIELD(fullScreenWidth), SettingType::Integer, 64, 32767, Screen, 1,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Full Screen Width"),
          {.unit = QT_TRANSLATE_NOOP("halvenor::SettingField", "pixels")}),
    Field(HALVENOR_FIELD(fullScreenHeight), SettingType::Integer, 64, 32767, Screen, 2,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Full Screen Height"),
          {.unit = QT_TRANSLATE_NOOP("halvenor::SettingField", "pixels")}),
    Field(HALVENOR_FIELD(trackTextDuration), SettingType::Integer, 0, 999999, Texts, 0,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Title Duration"),
          {.unit = "milliseconds", .measure = &kTitleSeconds}),
    Field(HALVENOR_FIELD(numFrequencyLabels), SettingType::Integer, 0, 100, Texts, 1,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Frequency Labels")),
    Field(HALVENOR_FIELD(autopilot), SettingType::Flag, 0, 1, Picture, 5,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Autopilot")),
    Field(HALVENOR_FIELD(verticalLayout), SettingType::Flag, 0, 1, Drawing, 4,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Vertical Layout"), kLook),
    Field(HALVENOR_FIELD(fontSize), SettingType::Integer, 5, 128, Texts, 2,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Font Size"),
          {.unit = QT_TRANSLATE_NOOP("halvenor::SettingField", "pixels")}),
    Field(HALVENOR_FIELD(frameDelay), SettingType::Integer, 0, 1000000, Screen, 0,
          QT_TRANSLATE_NOOP("halvenor::SettingField", "Frame Rate"),
          {.unit = "microseconds", .measure = &kFramesPerSecond}),
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
    for (const char* choice : field.choices)
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

const char* GroupTitle(SettingGroup group) {
  return kGroupTitles[static_cast<std::size_t>(group)];
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
