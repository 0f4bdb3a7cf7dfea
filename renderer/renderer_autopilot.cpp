// Looks that change by themselves: a fresh random one at once, or a slow drift.
#include "renderer/random_source.h"
#include "renderer/renderer.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace halvenor {
namespace {

constexpr float kUpdateInterval = 0.05F; // seconds
constexpr double kFullTurn = 360.0;

float RandomIntensity() {
  const float u = RandomSource::Unit();
  return std::clamp(u * u, 0.2F, 0.8F);
}

float RandomFade() {
  const float u = RandomSource::Unit();
  return u * u;
}

float RandomZoom() {
  const float t = RandomSource::Unit() - 0.5F;
  return t > 0.0F ? 0.5F + t * t : 0.5F - t * t;
}

float RandomZoomRotation() {
  return static_cast<float>(RandomSource::Next() * kFullTurn / 2147483648.0);
}

// Few lines are likelier than many.
float RandomNumLines() {
  const float lines = RandomSource::Unit() * 100.0F;
  return lines > 7.0F ? RandomSource::Unit() * 100.0F : lines;
}

// One for each value that drifts, in the order of the targets: the numbers of a look as they are
// stored, a color being three of them.
enum Value : std::size_t { kIntensity, kFade, kZoom, kZoomRotation, kNumLines, kFirstColor };
float (*const kDraws[Renderer::kDriftingValueCount])() = {
    RandomIntensity,    RandomFade,         RandomZoom,         RandomZoomRotation,
    RandomNumLines,     RandomSource::Unit, RandomSource::Unit, RandomSource::Unit,
    RandomSource::Unit, RandomSource::Unit, RandomSource::Unit,
};

struct DriftingValue {
  std::size_t offset; // bytes into the settings
  bool angle;
};

const auto& DriftingValues() {
  static const auto values = [] {
    std::array<DriftingValue, Renderer::kDriftingValueCount> all{};
    std::size_t count = 0;
    for (const SettingField& field : SettingFields()) {
      const bool color = field.type == SettingType::Color;
      if (!color && field.type != SettingType::Real) continue;
      for (std::size_t i = 0; i < (color ? 3U : 1U); ++i)
        all.at(count++) = {field.offset + i * sizeof(float), field.angle};
    }
    return all;
  }();
  return values;
}

float& ValueOf(Settings& settings, std::size_t value) {
  return *reinterpret_cast<float*>(reinterpret_cast<std::byte*>(&settings) +
                                   DriftingValues()[value].offset);
}

// The picture flows outward almost along one axis alone.
bool IsSteepZoom(const Settings& settings) {
  const float angle = settings.zoomRotation;
  if (settings.zoom > 0.5F) return angle < 20.0F || angle > 340.0F;
  return settings.zoom < 0.5F && angle > 160.0F && angle < 200.0F;
}

float Length(const Color& color) {
  return std::sqrt(color.red * color.red + color.green * color.green + color.blue * color.blue);
}

bool IsDark(const Settings& settings) {
  const float keep = 1.0F - settings.fade;
  const float brightness = (Length(settings.innerColor) + Length(settings.outerColor)) *
                           settings.intensity * (keep * keep);
  return brightness < 0.12F;
}

// Draws that lead away from two kinds of look; `set` takes them. Every test draws once, every
// success once more (or as often as the value needs).
template <typename Set>
void Correct(const Settings& settings, const Set& set) {
  if (settings.fade < 0.1F && IsSteepZoom(settings)) {
    for (const std::size_t value : {kFade, kZoomRotation, kZoom})
      if (RandomSource::Chance(0.01)) set(value, kDraws[value]());
  }
  if (!IsDark(settings)) return;
  for (std::size_t value = kFirstColor; value < Renderer::kDriftingValueCount; ++value)
    if (RandomSource::Chance(0.01)) set(value, RandomSource::Unit());
  if (RandomSource::Chance(0.05)) set(kIntensity, RandomSource::Unit());
  if (RandomSource::Chance(0.05)) set(kFade, RandomFade());
}

float Drift(float value, float target) {
  return static_cast<float>(value * 0.99 + target * 0.01);
}

// Takes the shorter way around the circle.
float DriftAngle(float value, float target) {
  double goal = target;
  if (std::fabs(goal - value) >= 180.0) goal += goal > 180.0 ? -kFullTurn : kFullTurn;
  double angle = value * 0.98 + goal * 0.02;
  if (angle < 0.0) angle += kFullTurn;
  if (angle > kFullTurn) angle -= kFullTurn;
  return static_cast<float>(angle);
}

} // namespace

void Renderer::RandomizeSettings(VisualPluginData* data) {
  Settings& settings = data->settings;
  for (std::size_t i = 0; i < kDriftingValueCount; ++i)
    ValueOf(settings, i) = kDraws[i]();
  for (std::int32_t* flag : {&settings.smoothing, &settings.sharpOverlay, &settings.colorCycle})
    *flag = RandomSource::Chance(0.5) ? 0 : 1;
  Correct(settings,
          [&settings](std::size_t value, float drawn) { ValueOf(settings, value) = drawn; });
}

void Renderer::UpdateSettings(VisualPluginData* data) {
  static std::int32_t firstTime = 1;
  static float timeUntilUpdate = kUpdateInterval;
  Settings& settings = data->settings;
  if (firstTime != 0) {
    for (std::size_t i = 0; i < kDriftingValueCount; ++i)
      autopilotTargets[i] = ValueOf(settings, i);
    firstTime = 0;
  }
  timeUntilUpdate -= 1.0F / fps; // in single precision: at 20 and 60 frames a second it meets 0
  if (timeUntilUpdate > 0.0F) return;
  timeUntilUpdate = kUpdateInterval;

  for (std::size_t i = 0; i < kDriftingValueCount; ++i) {
    if (RandomSource::Chance(0.005)) autopilotTargets[i] = kDraws[i]();
    float& value = ValueOf(settings, i);
    const auto drift = DriftingValues()[i].angle ? DriftAngle : Drift;
    value = drift(value, autopilotTargets[i]);
  }
  for (std::int32_t* flag : {&settings.smoothing, &settings.sharpOverlay})
    if (RandomSource::Chance(0.001)) *flag ^= 1;
  Correct(settings, [this](std::size_t value, float drawn) { autopilotTargets[value] = drawn; });
}

} // namespace halvenor
