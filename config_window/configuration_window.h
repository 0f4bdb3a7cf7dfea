// The configuration window.
#pragma once

#include "config_window/live_settings.h"
#include "config_window/message_line.h"
#include "config_window/preset_chooser.h"
#include "config_window/preset_panel.h"

#include <QtWidgets/QMainWindow>

#include <optional>

namespace halvenor {

/// What is moved here is seen at once. Save stores it; closing does, too, however it is done;
/// Cancel puts back what was there when the window was opened or last saved. It never keeps the
/// program alive: when another window is closed, which may end the plug-in, this one stores first.
/// A main window is what screen readers know as a window.
class ConfigurationWindow final : public QMainWindow {
  Q_OBJECT

public:
  /// Both outlive this object.
  ConfigurationWindow(LiveSettings& live, PresetChooser& chooser);

  /// Opens it, or brings it to the front.
  void OpenInFront();
  void Tell(const QString& line) { messages_->Tell(line); }

  /// Stores the block, and passes on the full-screen size when that is another one. False when the
  /// host refuses, after telling so.
  bool Save();
  void Cancel();

protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  void MakeContents();
  QLayout* MakeButtons();
  void Remember();
  void WatchWhileSeen();

  LiveSettings& live_;
  PresetChooser& chooser_;
  PresetPanel* presets_;
  MessageLine* messages_;
  std::optional<Settings> before_; ///< what Cancel puts back
  bool wasSwitching_ = false;      ///< and this
  bool refused_ = false;           ///< the last attempt to close could not store
};

} // namespace halvenor
