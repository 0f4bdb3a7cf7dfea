// Every setting with its control, in groups.
#pragma once

#include "config_window/live_settings.h"
#include "config_window/setting_control.h"

#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QScrollArea>

#include <optional>
#include <vector>

namespace halvenor {

/// Shows what `live` sees and moves what is in the record. Without a record the controls rest.
class SettingsPage final : public QScrollArea {
  Q_OBJECT

public:
  explicit SettingsPage(LiveSettings& live);

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  QWidget* MakeGroup(const QString& title);
  QString WithLetter(const QString& label);
  void AddField(QWidget* group, const SettingField& field);
  void AddScreenSizeButton(QWidget* group);
  void Arrange();
  void ShowPresent();

  LiveSettings& live_;
  std::vector<SettingControl*> controls_;
  std::vector<QWidget*> groups_;
  QString letters_; ///< that are taken as keys
  QBoxLayout* columns_[2] = {};
  std::optional<bool> twoColumns_;
};

} // namespace halvenor
