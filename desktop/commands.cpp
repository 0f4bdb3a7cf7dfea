#include "desktop/commands.h"

#include <QtGui/QKeySequence>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QWidget>

#include <iterator>

namespace halvenor {
namespace {

enum Trait : unsigned { kCheckable = 1, kRepeats = 2, kBeginsGroup = 4 };

struct Row {
  Command command;
  MenuName menu;
  const char* text;
  const char* keys; // the first one is shown
  unsigned traits;
};

constexpr Row kRows[] = {
    {Command::OpenFiles, MenuName::File, "&Open Files...", "Ctrl+O", 0},
    {Command::OpenFolder, MenuName::File, "Open &Folder...", "Ctrl+Shift+O", 0},
    {Command::OpenAddress, MenuName::File, "Open &Address...", "Ctrl+L", 0},
    {Command::Quit, MenuName::File, "&Quit", "Ctrl+Q", kBeginsGroup},
    {Command::PlayPause, MenuName::Playback, "&Play or Pause", "Space", 0},
    {Command::Stop, MenuName::Playback, "&Stop", "Ctrl+.", 0},
    {Command::Previous, MenuName::Playback, "P&revious", "P", kBeginsGroup},
    {Command::Next, MenuName::Playback, "&Next", "N", 0},
    {Command::SeekBack, MenuName::Playback, "&Back 5 Seconds", "Left", kRepeats},
    {Command::SeekForward, MenuName::Playback, "&Forward 5 Seconds", "Right", kRepeats},
    {Command::Louder, MenuName::Playback, "&Louder", "Up", kRepeats | kBeginsGroup},
    {Command::Quieter, MenuName::Playback, "&Quieter", "Down", kRepeats},
    {Command::Mute, MenuName::Playback, "&Mute", "M", kCheckable},
    {Command::ChooseSource, MenuName::Sound, "&Choose the Sound...", "O", 0},
    {Command::FullScreen, MenuName::View, "&Full Screen", "F, F11", kCheckable},
    {Command::LeaveFullScreen, MenuName::View, "&Leave Full Screen", "Esc", 0},
    {Command::ShowBar, MenuName::View, "&Transport Bar", "Ctrl+T", kCheckable | kBeginsGroup},
    {Command::KeepDrawing, MenuName::View, "Keep &Drawing When Idle", "Ctrl+D", kCheckable},
    {Command::Configure, MenuName::View, "&Configure %1...", "", kBeginsGroup},
    {Command::Keys, MenuName::Help, "&Keys", "F1", 0},
    {Command::About, MenuName::Help, "&About Halvenor", "", 0},
};

constexpr struct {
  MenuName menu;
  const char* title;
} kMenus[] = {{MenuName::File, "&File"},
              {MenuName::Playback, "&Playback"},
              {MenuName::Sound, "&Sound"},
              {MenuName::View, "&View"},
              {MenuName::Help, "&Help"}};

QList<QKeySequence> KeysOf(const Row& row) {
  if (*row.keys == '\0') return {};
  return QKeySequence::listFromString(QString::fromLatin1(row.keys).replace(", ", "; "));
}

// A command of the desktop's, not a key that types something.
bool HoldsCtrl(const QKeySequence& keys) {
  return keys[0].keyboardModifiers() & Qt::ControlModifier;
}

} // namespace

Commands::Commands(QWidget& window, QMenuBar& bar) : QObject(&window) {
  for (const auto& [menu, title] : kMenus)
    menus_[menu] = bar.addMenu(tr(title));
  for (const Row& row : kRows) {
    QMenu& menu = *menus_[row.menu];
    if (row.traits & kBeginsGroup) menu.addSeparator();
    QAction* action = menu.addAction(tr(row.text));
    action->setCheckable(row.traits & kCheckable);
    actions_[row.command] = action;
    const QList<QKeySequence> keys = KeysOf(row);
    if (keys.isEmpty()) continue;
    if (HoldsCtrl(keys.front())) {
      action->setShortcut(keys.front());
      window.addAction(action); // for its keys to work while the menu bar is hidden
    } else {
      action->setText(action->text() + '\t' + keys.front().toString(QKeySequence::NativeText));
    }
  }
}

bool Commands::Run(const QKeyEvent& event) {
  const Qt::KeyboardModifiers held = event.modifiers() & ~Qt::KeypadModifier;
  if (held != Qt::NoModifier) return false;
  const QKeySequence pressed(event.key());
  for (const Row& row : kRows) {
    if (!KeysOf(row).contains(pressed)) continue;
    QAction* action = actions_.at(row.command);
    if (!action->isEnabled()) return false;
    if (!event.isAutoRepeat() || row.traits & kRepeats) action->trigger();
    return true;
  }
  return false;
}

QList<Commands::Help> Commands::KeyHelp() {
  QList<Help> help;
  for (const Row& row : kRows) {
    const QList<QKeySequence> keys = KeysOf(row);
    if (keys.isEmpty()) continue;
    QStringList names;
    for (const QKeySequence& key : keys)
      names.append(key.toString(QKeySequence::NativeText));
    help.append({names.join(tr(" or ")), tr(row.text).remove('&').remove("...")});
  }
  return help;
}

} // namespace halvenor
