// The program's window: puts together the picture, the menus and what surrounds the picture.
#pragma once

#include "desktop/playback/player.h"
#include "desktop/window/user_actions.h"
#include "desktop/window/visualizer.h"

#include <QtCore/QSettings>
#include <QtWidgets/QMainWindow>

#include <functional>
#include <memory>
#include <string>

namespace halvenor {

class MainWindow final : public QMainWindow {
  Q_OBJECT

public:
  /// `player` and `settings`, where the window keeps the user's choices, must outlive it.
  /// `takeLog` returns what the plug-in has logged since the last call (UTF-8, may be empty): the
  /// cause when the picture cannot be shown, or when the plug-in sounds its alert.
  MainWindow(std::unique_ptr<Visualizer> visualizer, Player& player, QSettings& settings,
             std::function<std::string()> takeLog);
  ~MainWindow() override;

  void setVisible(bool visible) override;

  /// Ends the player and the plug-in's activation; an empty window is left. May be repeated.
  void End();

  /// Everything that a person can do, also for other programs.
  UserActions& Actions();

  void SetFullScreen(bool fullScreen);

  /// Whether the picture, the purpose of the program, could not be shown.
  [[nodiscard]] bool HasFailed() const { return hasNoPicture_; }

  /// The keys, one line each, for people.
  static QString KeyHelp();

public slots:
  /// Shows a failure over the picture and prints it on standard error.
  void Report(const QString& message);
  /// The same of a failure that a module of the plug-in has found.
  void ReportNotice(const QString& message);
  /// The plug-in has sounded its alert: shows what it logged, unless a notice says more.
  void ReportAlert();

signals:
  void FullScreenChanged();

protected:
  void showEvent(QShowEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

private:
  struct Parts;

  void ConnectPlugin();
  void ConnectStage();
  void HandleActions();
  void FillMenus();

  QString Configure();
  void ShowAbout();
  void ShowMenu(QPoint globalPosition);
  void ChooseSource();
  void ShowKeysOnce();
  void Raise();
  void QuitSoon();
  void TakeKeyboardBack();
  void ShowTitle();
  void ReportNoPicture();

  // In this order: the picture ends before its window does, and its window's parts before it.
  std::unique_ptr<Visualizer> visualizer_;
  Player& player_;
  QSettings& settings_;
  const std::function<std::string()> takeLog_;
  std::unique_ptr<Parts> parts_;
  bool hasNoPicture_ = false;
  bool hasNotice_ = false; ///< of the message whose alert may follow
};

} // namespace halvenor
