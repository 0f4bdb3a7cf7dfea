#include "desktop/window/action_menus.h"

#include "desktop/playback/player.h"

#include <QtGui/QKeySequence>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QWidget>

namespace halvenor {
namespace {

constexpr struct {
  MenuName menu;
  const char* title;
} kMenus[] = {{MenuName::File, QT_TRANSLATE_NOOP("halvenor::ActionMenus", "&File")},
              {MenuName::Playback, QT_TRANSLATE_NOOP("halvenor::ActionMenus", "&Playback")},
              {MenuName::Sound, QT_TRANSLATE_NOOP("halvenor::ActionMenus", "&Sound")},
              {MenuName::View, QT_TRANSLATE_NOOP("halvenor::ActionMenus", "&View")},
              {MenuName::Help, QT_TRANSLATE_NOOP("halvenor::ActionMenus", "&Help")}};

QList<QKeySequence> KeysOf(const ActionRow& row) {
  if (*row.keys == '\0') return {};
  return QKeySequence::listFromString(QString::fromLatin1(row.keys));
}

bool HasCtrl(const QKeySequence& keys) {
  return keys[0].keyboardModifiers() & Qt::ControlModifier;
}

} // namespace

ActionMenus::ActionMenus(QWidget& window, QMenuBar& bar, UserActions& actions, const Player& player)
    : QObject(&window), actions_(actions), player_(player) {
  for (const auto& [menu, title] : kMenus)
    menus_[menu] = bar.addMenu(tr(title));
  for (const ActionRow& row : UserActions::Rows()) {
    if (row.menu != MenuName::None) AddItem(row, window);
  }
  connect(&player_, &Player::Changed, this, &ActionMenus::Follow);
  Follow();
}

void ActionMenus::AddItem(const ActionRow& row, QWidget& window) {
  QMenu& menu = *menus_[row.menu];
  if (row.traits & ActionRow::kBeginsGroup) menu.addSeparator();
  QAction* item = menu.addAction(UserActions::tr(row.text));
  item->setCheckable(row.traits & ActionRow::kCheckable);
  items_[row.action] = item;
  connect(item, &QAction::triggered, this, [this, action = row.action] { actions_.Run(action); });
  const QList<QKeySequence> keys = KeysOf(row);
  if (keys.isEmpty()) return;
  if (HasCtrl(keys.front())) {
    item->setShortcut(keys.front());
    window.addAction(item); // keeps the shortcut working while the menu bar is hidden
  } else {
    item->setText(item->text() + '\t' + keys.front().toString(QKeySequence::NativeText));
  }
}

void ActionMenus::Follow() {
  for (const auto& [action, item] : items_) {
    if (UserActions::Row(action).refusal) item->setEnabled(actions_.Refusal(action).isEmpty());
  }
  items_.at(UserAction::Stop)->setEnabled(player_.CurrentMode() != Player::Mode::Idle);
  items_.at(UserAction::Mute)->setChecked(player_.IsMuted());
}

bool ActionMenus::RunKey(const QKeyEvent& event) {
  const Qt::KeyboardModifiers held = event.modifiers() & ~Qt::KeypadModifier;
  if (held != Qt::NoModifier) return false;
  const QKeySequence pressed(event.key());
  for (const ActionRow& row : UserActions::Rows()) {
    if (!KeysOf(row).contains(pressed)) continue;
    QAction* item = items_.at(row.action);
    if (!item->isEnabled()) return false;
    if (!event.isAutoRepeat() || row.traits & ActionRow::kRepeats) item->trigger();
    return true;
  }
  return false;
}

QList<ActionMenus::Help> ActionMenus::KeyHelp() {
  QList<Help> help;
  for (const ActionRow& row : UserActions::Rows()) {
    const QList<QKeySequence> keys = KeysOf(row);
    if (keys.isEmpty()) continue;
    const QString first = keys[0].toString(QKeySequence::NativeText);
    help.append({keys.size() == 1
                     ? first
                     : tr("%1 or %2").arg(first, keys[1].toString(QKeySequence::NativeText)),
                 UserActions::tr(row.text).remove('&').remove("...")});
  }
  return help;
}

} // namespace halvenor
