#include "presets/look.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace halvenor {
namespace {

constexpr double kFullTurn = 360;

using Components = std::array<float, 3>;
static_assert(sizeof(Components) == sizeof(Color));

template <typename Visitor>
void ForEachLookField(const Visitor& visit) {
  for (const SettingField& field : SettingFields())
    if (field.look) visit(field);
}

bool IsFlag(const SettingField& field) {
  return field.type == SettingType::Flag;
}

// Stored blocks may hold NaN, which must equal itself here.
bool Same(float one, float other) {
  return one == other || (std::isnan(one) && std::isnan(other));
}

bool SameField(const Settings& one, const Settings& other, const SettingField& field) {
  switch (field.type) {
  case SettingType::Real:
    return Same(ReadField<float>(one, field), ReadField<float>(other, field));
  case SettingType::Color: {
    const auto left = ReadField<Components>(one, field);
    const auto right = ReadField<Components>(other, field);
    return std::equal(left.begin(), left.end(), right.begin(), Same);
  }
  case SettingType::Flag:
    return (ReadField<std::int32_t>(one, field) != 0) ==
           (ReadField<std::int32_t>(other, field) != 0);
  case SettingType::Integer:
    break;
  }
  return ReadField<std::int32_t>(one, field) == ReadField<std::int32_t>(other, field);
}

void CopyField(const Settings& from, Settings& to, const SettingField& field) {
  if (field.type == SettingType::Color)
    StoreField(to, field, ReadField<Components>(from, field));
  else
    StoreField(to, field, ReadField<std::int32_t>(from, field)); // any four bytes
}

double IntoTurn(double degrees) {
  const double rest = std::fmod(degrees, kFullTurn);
  return rest < 0 ? rest + kFullTurn : rest;
}

float Between(float from, float to, double part) {
  if (!std::isfinite(from) || !std::isfinite(to)) return part < 0.5 ? from : to;
  return static_cast<float>(double{from} + (double{to} - double{from}) * part);
}

float AngleBetween(float from, float to, double part) {
  if (!std::isfinite(from) || !std::isfinite(to)) return part < 0.5 ? from : to;
  const double way = std::remainder(double{to} - double{from}, kFullTurn);
  return static_cast<float>(IntoTurn(double{from} + way * part));
}

Components ColorBetween(const Components& from, const Components& to, double part) {
  Components color;
  for (std::size_t i = 0; i < color.size(); ++i)
    color[i] = Between(from[i], to[i], part);
  return color;
}

float TidyReal(float value, float fallback, const SettingField& field) {
  if (std::isnan(value)) return fallback;
  if (field.angle && std::isfinite(value) && (value < field.minimum || value > field.maximum))
    return static_cast<float>(IntoTurn(value));
  return static_cast<float>(std::clamp(double{value}, field.minimum, field.maximum));
}

} // namespace

bool SameLook(const Settings& one, const Settings& other) {
  const auto fields = SettingFields();
  return std::all_of(fields.begin(), fields.end(), [&](const SettingField& field) {
    return !field.look || SameField(one, other, field);
  });
}

void CopyLook(const Settings& from, Settings& to) {
  ForEachLookField([&](const SettingField& field) { CopyField(from, to, field); });
}

Settings BlendLooks(const Settings& from, const Settings& to, double part) {
  Settings blend = from;
  if (!(part > 0)) return blend;
  if (part >= 1) {
    CopyLook(to, blend);
    return blend;
  }
  ForEachLookField([&](const SettingField& field) {
    if (field.type == SettingType::Color) {
      StoreField(
          blend, field,
          ColorBetween(ReadField<Components>(from, field), ReadField<Components>(to, field), part));
    } else if (field.type == SettingType::Real) {
      const auto between = field.angle ? AngleBetween : Between;
      StoreField(blend, field,
                 between(ReadField<float>(from, field), ReadField<float>(to, field), part));
    } else if (part >= 0.5) {
      CopyField(to, blend, field);
    }
  });
  return blend;
}

Settings TidyLook(const Settings& look) {
  Settings tidy = DefaultSettings();
  ForEachLookField([&](const SettingField& field) {
    if (field.type == SettingType::Real) {
      StoreField(tidy, field,
                 TidyReal(ReadField<float>(look, field), ReadField<float>(tidy, field), field));
    } else if (field.type == SettingType::Color) {
      auto color = ReadField<Components>(tidy, field);
      const auto wanted = ReadField<Components>(look, field);
      for (std::size_t i = 0; i < color.size(); ++i)
        color[i] = TidyReal(wanted[i], color[i], field);
      StoreField(tidy, field, color);
    } else {
      const auto value = ReadField<std::int32_t>(look, field);
      const auto clamped = std::clamp(value, static_cast<std::int32_t>(field.minimum),
                                      static_cast<std::int32_t>(field.maximum));
      StoreField(tidy, field, IsFlag(field) ? std::int32_t{value != 0} : clamped);
    }
  });
  return tidy;
}

} // namespace halvenor
