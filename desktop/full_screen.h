// The window over a whole screen, and back as it was.
#pragma once

#include "desktop/drawing_area.h"
#include "desktop/screen_saver.h"
#include "desktop/visualizer.h"

#include <QtCore/QSettings>
#include <QtWidgets/QMenu>
#include <QtWidgets/QWidget>

namespace halvenor {

/// On which screen, in which size, and with a screen that stays awake. What a person chose of these
/// is kept in the settings.
class FullScreen final : public QObject {
  Q_OBJECT

public:
  FullScreen(QWidget& window, DrawingArea& area, Visualizer& visualizer, QSettings& settings);

  void Set(bool fullScreen);
  /// To be called whenever the window's state has changed.
  void Follow();
  /// Whether sound plays, which keeps the screen awake in full screen.
  void SetPlaying(bool playing);

  /// Inserts the choice of the screen and of the size above `before`.
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
