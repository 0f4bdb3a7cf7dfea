// What a person can tell the window to do: one table for the menus, the keys and their help.
#pragma once

#include <QtCore/QObject>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>

#include <map>

class QMenuBar;
class QMenu;
class QWidget;

namespace halvenor {

enum class Command {
  OpenFiles,
  OpenFolder,
  OpenAddress,
  Quit,
  PlayPause,
  Stop,
  Previous,
  Next,
  SeekBack,
  SeekForward,
  Louder,
  Quieter,
  Mute,
  ChooseSource,
  FullScreen,
  LeaveFullScreen,
  ShowBar,
  KeepDrawing,
  Configure,
  Keys,
  About,
};

enum class MenuName { File, Playback, Sound, View, Help };

/// The actions, each in its menu. Those with Ctrl work at any time; keys without it are the
/// plug-in's first, so they are only shown in the menus, and `Run` is asked for them.
class Commands final : public QObject {
  Q_OBJECT

public:
  /// Fills the empty `bar`; the actions work in `window`.
  Commands(QWidget& window, QMenuBar& bar);

  QAction& operator[](Command command) { return *actions_.at(command); }
  QMenu& Menu(MenuName menu) { return *menus_.at(menu); }

  /// Does what the key stands for; false when it stands for nothing that can be done now.
  bool Run(const QKeyEvent& event);

  /// Keys and what they do, for people.
  struct Help {
    QString keys;
    QString text;
  };
  static QList<Help> KeyHelp();

private:
  std::map<Command, QAction*> actions_;
  std::map<MenuName, QMenu*> menus_;
};

} // namespace halvenor
