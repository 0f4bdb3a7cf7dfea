// The program's window: the picture, a menu, full screen, and a place for bad news.
#pragma once

#include "desktop/drawing_area.h"
#include "desktop/player.h"
#include "desktop/visualizer.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QMainWindow>

#include <functional>
#include <memory>
#include <string>

namespace halvenor {

class MainWindow final : public QMainWindow {
  Q_OBJECT

public:
  /// `player` must outlive the window. `whyNoPicture` is asked for the cause (UTF-8, may be empty)
  /// when the picture cannot be shown.
  MainWindow(std::unique_ptr<Visualizer> visualizer, Player& player,
             std::function<std::string()> whyNoPicture);
  ~MainWindow() override;

  /// Ends the player and tells the plug-in to end; after it only an empty window is left. May be
  /// repeated.
  void End();

  void SetFullScreen(bool fullScreen);

  /// Whether something went wrong that a person was told of.
  [[nodiscard]] bool HasFailed() const { return failed_; }

  /// The keys, one line each, for people.
  static QString KeyHelp();

protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  /// Tab is a key like any other: there is nothing here to move the focus to.
  bool focusNextPrevChild(bool) override { return false; }

private:
  void MakeContents();
  void MakeMenus();
  void Connect();

  void ToggleFullScreen();
  void LeaveFullScreen();
  void Configure();
  void ShowKeys();
  void ShowTrack(const QString& title, const QString& artist);
  void ReportNoPicture();
  /// Tells of a failure in the window and on standard error.
  void Report(const QString& line);

  struct WindowKey;
  static const WindowKey kWindowKeys[];

  // In this order: the picture ends before its window does.
  DrawingArea* area_ = nullptr; ///< owned by `container_`
  std::unique_ptr<Visualizer> visualizer_;
  Player& player_;
  const std::function<std::string()> whyNoPicture_;
  QWidget* container_ = nullptr;
  QLabel* notice_ = nullptr;
  QAction* fullScreenAction_ = nullptr;
  bool failed_ = false;
};

} // namespace halvenor
