// Every setting with its control, in groups.
#pragma once

#include "config_window/live_settings.h"
#include "config_window/setting_control.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QScrollArea>

#include <optional>
#include <vector>

namespace halvenor {

/// Shows what `live` sees and moves what is in the record. Without a record the controls rest.
class SettingsPage final : public QScrollArea {
  Q_OBJECT

public:
  /// `takenLetters` lead elsewhere in the window, with Alt.
  SettingsPage(LiveSettings& live, const QString& takenLetters);

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  QWidget* MakeGroup(const QString& title);
  QString WithLetter(const QString& label);
  void AddField(QWidget* group, const SettingField& field);
  void AddScreenSizeButton(QWidget* group);
  [[nodiscard]] int WidestGroup(QFormLayout::RowWrapPolicy policy) const;
  void Arrange();
  void ShowPresent();

  LiveSettings& live_;
  std::vector<SettingControl*> controls_;
  std::vector<QWidget*> groups_;
  QString letters_; ///< that are taken as keys
  QBoxLayout* columns_[2] = {};
  std::optional<bool> twoColumns_;
  int widest_ = 0; ///< pixels that the groups need, with their labels beside the controls
  int around_ = 0; ///< and what is around them
};

} // namespace halvenor
