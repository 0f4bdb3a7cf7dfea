// The settings block while people look at it and while presets change it.
#pragma once

#include "config_window/record_access.h"
#include "presets/preset_switcher.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>
#include <optional>
#include <vector>

namespace halvenor {

/// Writes into the record what the window and the presets want, and tells what is in it. Looks at
/// it ten times a second while somebody watches or presets switch, sixty times while a change goes
/// on, else never. No signal is sent from inside the guard.
class LiveSettings final : public QObject {
  Q_OBJECT

public:
  LiveSettings();

  RecordAccess& Record() { return record_; }

  void Watch(bool watched);
  /// Runs `edit` on the block at the end of this turn of the event loop, in one guard with the
  /// others of the turn.
  void Edit(std::function<void(Settings&)> edit);
  /// What was edited is in the record when this returns, and `Present` is what the record holds.
  void Flush();
  /// The block as it was last seen; nothing when there was no record.
  [[nodiscard]] const std::optional<Settings>& Present() const { return present_; }

  /// See `PresetSwitcher`.
  void BlendTo(const Settings& target, double seconds);
  void StartSwitching(double interval);
  /// Ends a smooth change, too.
  void StopSwitching();
  void SetInterval(double interval) { switcher_.SetInterval(interval); }
  [[nodiscard]] bool IsSwitching() const { return switcher_.IsSwitching(); }
  /// Flushes, and leaves the look as it is then.
  void EndBlend();
  [[nodiscard]] bool IsBlending() const { return switcher_.IsBlending(); }

  /// Shows a message, or a failure, to the user.
  void Tell(const QString& line) { emit Told(line); }
  void Fail(const QString& line) { emit Failed(line); }

signals:
  /// `Present` has been read anew.
  void Seen();
  void WantsPreset();
  void SwitchingChanged(bool on);
  void Told(const QString& line);
  void Failed(const QString& line);

private:
  void Schedule();
  void Report(PresetSwitcher::Event event);

  RecordAccess record_;
  PresetSwitcher switcher_;
  std::vector<std::function<void(Settings&)>> edits_;
  std::optional<Settings> present_;
  QTimer timer_;
  QElapsedTimer clock_;
  bool watched_ = false;
  bool wasSwitching_ = false;
};

} // namespace halvenor
