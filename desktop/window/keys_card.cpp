#include "desktop/window/keys_card.h"

#include "desktop/window/action_menus.h"

#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

namespace halvenor {
namespace {

constexpr int kCardMilliseconds = 30'000;
constexpr int kColumns = 2;
constexpr int kBetweenColumns = 12;

} // namespace

KeysCard::KeysCard() {
  setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  setAccessibleName(tr("Keyboard shortcuts"));
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(16, 12, 16, 12);
  layout->setHorizontalSpacing(12);
  const QList<ActionMenus::Help> help = ActionMenus::KeyHelp();
  const int rows = static_cast<int>((help.size() + kColumns - 1) / kColumns);
  for (int i = 0; i < help.size(); ++i) {
    auto* keys = new QLabel(QStringLiteral("<b>%1</b>").arg(help[i].keys.toHtmlEscaped()));
    layout->addWidget(keys, i % rows, 2 * (i / rows));
    auto* text = new QLabel(help[i].text);
    if (i / rows + 1 < kColumns) text->setContentsMargins(0, 0, kBetweenColumns, 0);
    layout->addWidget(text, i % rows, 2 * (i / rows) + 1);
  }
  auto* rest =
      new QLabel(tr("The visualizer has more keys: <b>h</b> shows them, <b>c</b> opens its "
                    "settings.<br>Press any key or click to close this card. Press "
                    "<b>F1</b> to show it again."));
  layout->addWidget(rest, rows, 0, 1, 2 * kColumns);
  timer_.setSingleShot(true);
  timer_.setInterval(kCardMilliseconds);
  connect(&timer_, &QTimer::timeout, this, [this] { emit Wanted(false); });
}

} // namespace halvenor
