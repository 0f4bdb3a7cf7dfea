// The menus and the keys of the user actions.
#pragma once

#include "desktop/window/user_actions.h"

#include <QtCore/QList>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>

#include <map>

class QMenuBar;
class QMenu;
class QWidget;

namespace halvenor {

/// A `QAction` for each action that has a menu, enabled while it can be carried out. Keys with Ctrl
/// work at any time. Keys without it go to the plug-in first, so they are only shown in the menus,
/// and `RunKey` is asked for them.
class ActionMenus final : public QObject {
  Q_OBJECT

public:
  /// Fills the empty `bar`; the shortcuts work in `window`. `player` tells when to look again.
  ActionMenus(QWidget& window, QMenuBar& bar, UserActions& actions, const Player& player);

  QAction& operator[](UserAction action) { return *items_.at(action); }
  QMenu& Menu(MenuName menu) { return *menus_.at(menu); }

  /// Runs the action of the key; false when it has none, or none that is possible now.
  bool RunKey(const QKeyEvent& event);

  /// The keys of an action and what it does, for people.
  struct Help {
    QString keys;
    QString text;
  };
  static QList<Help> KeyHelp();

private:
  void AddItem(const ActionRow& row, QWidget& window);
  void Follow();

  UserActions& actions_;
  const Player& player_;
  std::map<UserAction, QAction*> items_;
  std::map<MenuName, QMenu*> menus_;
};

} // namespace halvenor
