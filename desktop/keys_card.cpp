#include "desktop/keys_card.h"

#include "desktop/commands.h"

#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>

namespace halvenor {
namespace {

constexpr int kShownMilliseconds = 30'000;
constexpr int kColumns = 2;

} // namespace

KeysCard::KeysCard() {
  setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
  setAccessibleName(tr("Keys"));
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(16, 12, 16, 12);
  layout->setHorizontalSpacing(12);
  const QList<Commands::Help> help = Commands::KeyHelp();
  const int rows = static_cast<int>((help.size() + kColumns - 1) / kColumns);
  for (int i = 0; i < help.size(); ++i) {
    auto* keys = new QLabel(QStringLiteral("<b>%1</b>").arg(help[i].keys.toHtmlEscaped()));
    layout->addWidget(keys, i % rows, 2 * (i / rows));
    layout->addWidget(new QLabel(help[i].text), i % rows, 2 * (i / rows) + 1);
  }
  auto* rest = new QLabel(tr("Other keys are the visualizer's: <b>h</b> shows what they do, "
                             "<b>c</b> opens its settings.<br>Any key or a click closes this card; "
                             "<b>F1</b> shows it again."));
  layout->addWidget(rest, rows, 0, 1, 2 * kColumns);
  timer_.setSingleShot(true);
  timer_.setInterval(kShownMilliseconds);
  connect(&timer_, &QTimer::timeout, this, [this] { emit Wanted(false); });
}

} // namespace halvenor
