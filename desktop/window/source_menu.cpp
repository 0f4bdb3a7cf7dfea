#include "desktop/window/source_menu.h"

#include "audio/analyzer.h"

#include <QtWidgets/QInputDialog>

namespace halvenor {
namespace {

// An ampersand in the name of a device is no mnemonic.
QString Plain(QString text) {
  return text.replace('&', QStringLiteral("&&"));
}

} // namespace

void SourceMenu::Serve(QMenu& menu) {
  kept_[&menu] = menu.actions().size();
  connect(&menu, &QMenu::aboutToShow, this, [this, &menu] { Update(menu); });
  Update(menu); // an empty menu is never opened
}

void SourceMenu::Fill(QMenu& menu, qsizetype kept) {
  const QList<QAction*> present = menu.actions();
  for (qsizetype i = kept; i < present.size(); ++i)
    delete present[i];
  if (kept > 0) menu.addSeparator();
  QAction* any = menu.addAction(tr("&What This Computer Plays"));
  any->setCheckable(true);
  any->setChecked(player_.CurrentMode() == Player::Mode::Listening &&
                  player_.ChosenSource().isEmpty());
  connect(any, &QAction::triggered, this, [this] { player_.Listen({}); });
  AddSources(menu, false);
  AddSources(menu, true);
  menu.addSeparator();
  QAction* delay = menu.addAction(tr("Audio &Delay..."));
  delay->setEnabled(!player_.OutputDevice().isEmpty());
  connect(delay, &QAction::triggered, this, &SourceMenu::AskDelay);
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

void SourceMenu::AskDelay() {
  auto* dialog = new QInputDialog(&window_);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(tr("Audio Delay"));
  dialog->setLabelText(tr("Delay the picture by this many milliseconds, in addition to the\n"
                          "latency that %1 reports:")
                           .arg(player_.OutputDevice()));
  dialog->setInputMode(QInputDialog::IntInput);
  dialog->setIntRange(-kMostOffset, kMostOffset);
  dialog->setIntStep(10);
  dialog->setIntValue(player_.Delay());
  connect(dialog, &QInputDialog::intValueSelected, &player_, &Player::SetDelay);
  dialog->open();
}

} // namespace halvenor
