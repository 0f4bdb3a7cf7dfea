// Which preset comes next, and when.
#pragma once

#include "config_window/live_settings.h"
#include "presets/preset_library.h"

#include <QtCore/QObject>
#include <QtCore/QSettings>

#include <random>
#include <set>
#include <string>
#include <vector>

namespace halvenor {

/// How presets follow each other; kept from run to run.
struct Switching {
  double interval = 30; ///< seconds between two changes
  double smooth = 3;    ///< seconds that a change takes
  bool favoritesOnly = false;
  bool random = false;
};

/// The presets of a person, one of which is the present one: chosen by hand or by the clock, also
/// while the window is closed.
class PresetChooser final : public QObject {
  Q_OBJECT

public:
  /// `live` outlives this object.
  PresetChooser(LiveSettings& live, PresetLibrary::Folders folders);

  [[nodiscard]] const PresetLibrary& Library() const { return library_; }
  /// Reads the presets that are on the disk now. Tells of each file that cannot be read once.
  void Load();
  /// Has the library changed by `change`, which returns its problem; tells that, and whoever shows
  /// the presets. True when all went well.
  template <typename Change>
  bool Alter(Change&& change) {
    return Altered(change(library_));
  }
  /// Keeps the present look as a new preset under a fresh name, which becomes the chosen one.
  bool AddPresent();

  /// The preset chosen last, empty when there is none.
  [[nodiscard]] const std::string& Chosen() const { return chosen_; }
  /// Whether what is seen is the look of the chosen one, or is on its way there.
  [[nodiscard]] bool IsPlain() const { return plain_; }
  void Choose(const std::string& id);
  /// The one after the chosen one, or before it for -1, of those that `Switching` lets in.
  void Step(int step);
  /// Another one than the chosen one.
  void ChooseRandom();

  [[nodiscard]] bool IsSwitching() const { return live_.IsSwitching(); }
  void SetSwitching(bool on);
  [[nodiscard]] const Switching& Preferences() const { return preferences_; }
  void SetPreferences(const Switching& preferences);

signals:
  void PresetsChanged();
  void ChosenChanged();

private:
  bool Altered(const PresetLibrary::Problem& problem);
  std::vector<const Preset*> Allowed();
  void ComparePresent();
  void ReadPreferences();

  LiveSettings& live_;
  PresetLibrary library_;
  QSettings store_;
  Switching preferences_;
  std::string chosen_;
  bool plain_ = false;
  bool loaded_ = false;
  std::set<std::string> toldProblems_;
  std::mt19937 random_{std::random_device{}()};
};

} // namespace halvenor
