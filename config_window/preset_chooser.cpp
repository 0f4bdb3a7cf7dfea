#include "config_window/preset_chooser.h"

#include "presets/look.h"

#include <algorithm>

namespace halvenor {
namespace {

constexpr double kShortestInterval = 2;
constexpr double kLongestInterval = 3600;
constexpr double kLongestChange = 60;

constexpr char kInterval[] = "switching/interval";
constexpr char kSmooth[] = "switching/smooth";
constexpr char kFavoritesOnly[] = "switching/favouritesOnly";
constexpr char kRandom[] = "switching/random";

} // namespace

PresetChooser::PresetChooser(LiveSettings& live, PresetLibrary::Folders folders)
    : live_(live), library_(std::move(folders)),
      store_(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("halvenor"),
             QStringLiteral("configuration")) {
  store_.setFallbacksEnabled(false);
  ReadPreferences();
  connect(&live_, &LiveSettings::Seen, this, &PresetChooser::ComparePresent);
  connect(&live_, &LiveSettings::WantsPreset, this, [this] {
    if (preferences_.random) {
      ChooseRandom();
    } else {
      Step(1);
    }
  });
}

void PresetChooser::Load() {
  loaded_ = true;
  for (const std::string& problem : library_.Load()) {
    if (toldProblems_.insert(problem).second) live_.Fail(QString::fromStdString(problem));
  }
  emit PresetsChanged();
  ComparePresent();
}

bool PresetChooser::Altered(const PresetLibrary::Problem& problem) {
  if (problem) {
    live_.Fail(QString::fromStdString(*problem));
    return false;
  }
  emit PresetsChanged();
  ComparePresent();
  return true;
}

bool PresetChooser::AddPresent() {
  if (!loaded_) Load();
  live_.EndBlend(); // what is kept is what stays to be seen
  if (!live_.Present()) return false;
  const std::string name = library_.FreshName(tr("My Look").toStdString());
  std::string id;
  if (const PresetLibrary::Problem problem = library_.Add(name, *live_.Present(), &id)) {
    live_.Fail(tr("The look was not saved: %1. Check that there is free space and that you may "
                  "write there, then press s again.")
                   .arg(QString::fromStdString(*problem)));
    return false;
  }
  Altered({});
  chosen_ = id;
  plain_ = true;
  emit ChosenChanged();
  live_.Tell(tr("Saved this look as \"%1\".").arg(QString::fromStdString(name)));
  return true;
}

void PresetChooser::Choose(const std::string& id) {
  const Preset* preset = library_.Find(id);
  if (!preset) return;
  chosen_ = id;
  plain_ = true;
  live_.BlendTo(preset->look, preferences_.smooth);
  emit ChosenChanged();
}

// All of them while none is a favorite: switching never stands still.
std::vector<const Preset*> PresetChooser::Allowed() {
  std::vector<const Preset*> allowed;
  for (const Preset& preset : library_.Presets()) {
    if (preset.favorite || !preferences_.favoritesOnly) allowed.push_back(&preset);
  }
  if (allowed.empty()) {
    for (const Preset& preset : library_.Presets())
      allowed.push_back(&preset);
  }
  return allowed;
}

void PresetChooser::Step(int step) {
  const std::vector<const Preset*> allowed = Allowed();
  if (allowed.empty()) return;
  const auto count = static_cast<int>(allowed.size());
  const auto found = std::ranges::find(allowed, chosen_, &Preset::id);
  int next = step > 0 ? 0 : count - 1;
  if (found != allowed.end())
    next = (static_cast<int>(found - allowed.begin()) + step + count) % count;
  Choose(allowed[static_cast<std::size_t>(next)]->id);
}

void PresetChooser::ChooseRandom() {
  std::vector<const Preset*> allowed = Allowed();
  if (allowed.size() > 1)
    std::erase_if(allowed, [this](const Preset* preset) { return preset->id == chosen_; });
  if (allowed.empty()) return;
  std::uniform_int_distribution<std::size_t> any(0, allowed.size() - 1);
  Choose(allowed[any(random_)]->id);
}

void PresetChooser::SetSwitching(bool on) {
  if (on == IsSwitching()) return;
  if (on) {
    live_.StartSwitching(preferences_.interval);
  } else {
    live_.StopSwitching();
  }
}

// A look on its way to the chosen one is not told from one that was changed before the blend ends;
// until somebody moves the look otherwise, it counts as the chosen one.
void PresetChooser::ComparePresent() {
  const Preset* preset = library_.Find(chosen_);
  const bool plain =
      preset && live_.Present() && (live_.IsBlending() || SameLook(*live_.Present(), preset->look));
  if (std::exchange(plain_, plain) != plain) emit ChosenChanged();
}

void PresetChooser::ReadPreferences() {
  const auto number = [this](const char* key, double value, double least, double most) {
    bool fine = false;
    const double read = store_.value(QLatin1String(key), value).toDouble(&fine);
    return fine && read >= least && read <= most ? read : value;
  };
  Switching& to = preferences_;
  to.interval = number(kInterval, to.interval, kShortestInterval, kLongestInterval);
  to.smooth = number(kSmooth, to.smooth, 0, kLongestChange);
  to.favoritesOnly = store_.value(QLatin1String(kFavoritesOnly), to.favoritesOnly).toBool();
  to.random = store_.value(QLatin1String(kRandom), to.random).toBool();
}

void PresetChooser::SetPreferences(const Switching& preferences) {
  preferences_ = preferences;
  if (IsSwitching()) live_.SetInterval(preferences_.interval);
  store_.setValue(QLatin1String(kInterval), preferences_.interval);
  store_.setValue(QLatin1String(kSmooth), preferences_.smooth);
  store_.setValue(QLatin1String(kFavoritesOnly), preferences_.favoritesOnly);
  store_.setValue(QLatin1String(kRandom), preferences_.random);
  store_.sync();
  if (store_.status() != QSettings::NoError)
    live_.Fail(tr("How presets change could not be saved in %1.").arg(store_.fileName()));
}

} // namespace halvenor
