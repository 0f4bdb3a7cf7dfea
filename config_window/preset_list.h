// The view of the presets.
#pragma once

#include "config_window/preset_delegate.h"
#include "config_window/preset_model.h"

#include <QtWidgets/QListView>

#include <string>

namespace halvenor {

/// A wall of pictures. A click or Enter chooses; a click on a star marks a favorite. The current
/// row stays when the presets change.
class PresetList final : public QListView {
  Q_OBJECT

public:
  PresetList(PresetChooser& chooser, PresetModel& model, PresetFilter& filter);

  /// Empty when there is no current row.
  [[nodiscard]] std::string CurrentId() const;
  /// Makes it the current row, also when it comes with the next change.
  void SetCurrentId(const std::string& id);
  [[nodiscard]] bool IsSeen(const std::string& id) const;

protected:
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
  bool ClickedStar(const QMouseEvent& event);

  PresetModel& model_;
  PresetFilter& filter_;
  PresetDelegate* delegate_;
  std::string kept_;
  int keptScroll_ = 0;
  bool onStar_ = false;
};

} // namespace halvenor
