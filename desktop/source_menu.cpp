#include "desktop/source_menu.h"

#include <QtWidgets/QInputDialog>

namespace halvenor {
namespace {

constexpr int kLongestOffset = 2000; // milliseconds

// Titles of devices are not mnemonics.
QString Plain(QString text) {
  return text.replace('&', QStringLiteral("&&"));
}

} // namespace

void SourceMenu::Serve(QMenu& menu) {
  const qsizetype kept = menu.actions().size();
  connect(&menu, &QMenu::aboutToShow, this, [this, &menu, kept] { Fill(menu, kept); });
  Fill(menu, kept); // an empty menu is never opened
}

void SourceMenu::Fill(QMenu& menu, qsizetype kept) {
  const QList<QAction*> present = menu.actions();
  for (qsizetype i = kept; i < present.size(); ++i)
    delete present[i];
  if (kept > 0) menu.addSeparator();
  QAction* any = menu.addAction(tr("&Whatever This Computer Plays"));
  any->setCheckable(true);
  any->setChecked(player_.CurrentMode() == Player::Mode::Listening &&
                  player_.ChosenSource().isEmpty());
  connect(any, &QAction::triggered, this, [this] { player_.Listen({}); });
  AddSources(menu, false);
  AddSources(menu, true);
  menu.addSeparator();
  QAction* offset = menu.addAction(tr("&Delay of the Sound..."));
  offset->setEnabled(!player_.OutputDevice().isEmpty());
  connect(offset, &QAction::triggered, this, &SourceMenu::AskOffset);
}

void SourceMenu::AddSources(QMenu& menu, bool microphones) {
  const bool listens = player_.CurrentMode() == Player::Mode::Listening;
  bool isFirst = true;
  for (const Player::Source& source : player_.Sources()) {
    if (source.isMicrophone != microphones) continue;
    if (isFirst) menu.addSection(microphones ? tr("Microphones") : tr("Outputs"));
    isFirst = false;
    QAction* action = menu.addAction(Plain(source.description));
    action->setCheckable(true);
    action->setChecked(listens && source.name == player_.ChosenSource());
    connect(action, &QAction::triggered, this,
            [this, name = source.name] { player_.Listen(name); });
  }
}

void SourceMenu::AskOffset() {
  auto* dialog = new QInputDialog(&window_);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(tr("Delay of the Sound"));
  dialog->setLabelText(tr("How many milliseconds the picture waits for the sound of\n%1, beyond "
                          "the delay that this reports:")
                           .arg(player_.OutputDevice()));
  dialog->setInputMode(QInputDialog::IntInput);
  dialog->setIntRange(-kLongestOffset, kLongestOffset);
  dialog->setIntStep(10);
  dialog->setIntValue(player_.Offset());
  connect(dialog, &QInputDialog::intValueSelected, &player_, &Player::SetOffset);
  dialog->open();
}

} // namespace halvenor
