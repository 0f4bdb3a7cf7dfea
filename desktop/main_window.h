// The program's window: puts together the picture, the menus and what stands around the picture.
#pragma once

#include "desktop/player.h"
#include "desktop/visualizer.h"

#include <QtCore/QSettings>
#include <QtWidgets/QMainWindow>

#include <functional>
#include <memory>
#include <string>

namespace halvenor {

class MainWindow final : public QMainWindow {
  Q_OBJECT

public:
  /// `player` and `settings`, where the window keeps what people choose in it, must outlive it.
  /// `whyNoPicture` is asked for the cause (UTF-8, may be empty) when the picture cannot be shown.
  MainWindow(std::unique_ptr<Visualizer> visualizer, Player& player, QSettings& settings,
             std::function<std::string()> whyNoPicture);
  ~MainWindow() override;

  void setVisible(bool visible) override;

  /// Ends the player and tells the plug-in to end; after it only an empty window is left. May be
  /// repeated.
  void End();

  void SetFullScreen(bool fullScreen);

  /// Whether what it is there for, the picture, could not be shown.
  [[nodiscard]] bool HasFailed() const { return hasNoPicture_; }

  /// The keys, one line each, for people.
  static QString KeyHelp();

protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

private:
  struct Parts;

  void ConnectPlugin();
  void ConnectStage();
  void ConnectCommands();

  void Configure();
  void ShowAbout();
  void ShowMenu(QPoint globalPosition);
  void ChooseSource();
  void ShowKeysOnce();
  void TakeKeyboardBack();
  void ShowTitle();
  void ReportNoPicture();
  /// Tells of what went wrong in the window and on standard error.
  void Report(const QString& line, bool stays = false);

  // In this order: the picture ends before its window does, and its window's parts before it.
  std::unique_ptr<Visualizer> visualizer_;
  Player& player_;
  QSettings& settings_;
  const std::function<std::string()> whyNoPicture_;
  std::unique_ptr<Parts> parts_;
  bool hasNoPicture_ = false;
};

} // namespace halvenor
