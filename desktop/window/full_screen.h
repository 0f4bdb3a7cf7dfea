// Entering and leaving full screen.
#pragma once

#include "desktop/window/drawing_area.h"
#include "desktop/window/screen_saver.h"
#include "desktop/window/visualizer.h"

#include <QtCore/QSettings>
#include <QtWidgets/QMenu>
#include <QtWidgets/QWidget>

namespace halvenor {

/// Full screen on the chosen screen, in the chosen size, and without screen saver while sound
/// plays. The choices are kept in the settings.
class FullScreen final : public QObject {
  Q_OBJECT

public:
  FullScreen(QWidget& window, DrawingArea& area, Visualizer& visualizer, QSettings& settings);

  void Set(bool fullScreen);
  /// Call it whenever the window's state has changed.
  void Follow();
  /// While sound plays in full screen, the screen stays awake.
  void SetPlaying(bool playing);

  /// Inserts the choices of the screen and of the size above `before`.
  void InsertChoices(QMenu& menu, QAction& before);

private:
  void FillScreens(QMenu& menu);
  void ChooseScreen(const QString& name);
  void ChooseSize(bool asAsked);
  void ApplySize();
  [[nodiscard]] QScreen* ChosenScreen() const;
  void MoveTo(QScreen& screen);
  void MoveBack();

  QWidget& window_;
  DrawingArea& area_;
  Visualizer& visualizer_;
  QSettings& settings_;
  ScreenSaver screenSaver_;
  bool playing_ = false;
  QRect before_; ///< where the window was on another screen; null: it was not moved
  bool wasMaximized_ = false;
};

} // namespace halvenor
