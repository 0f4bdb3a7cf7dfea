#include "desktop/window/signal_line.h"

#include <QtGui/QAction>
#include <QtWidgets/QHBoxLayout>

namespace halvenor {
namespace {

constexpr int kPatienceMilliseconds = 1000;
constexpr int kLevelSteps = 1000;

} // namespace

SignalLine::SignalLine(const Player& player, QAction& choose) : player_(player) {
  setAccessibleName(tr("Signal"));
  text_ = new QLabel;
  text_->setTextFormat(Qt::PlainText);
  text_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  level_ = new QProgressBar;
  level_->setAccessibleName(tr("Level"));
  level_->setRange(0, kLevelSteps);
  level_->setTextVisible(false);
  level_->setFixedSize(6 * fontMetrics().height(), fontMetrics().height() * 2 / 3);
  auto* button = new QToolButton;
  button->setText(tr("Choose Source... (O)"));
  button->setFocusPolicy(Qt::TabFocus);
  connect(button, &QToolButton::clicked, &choose, &QAction::trigger);

  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(8, 2, 8, 2);
  layout->addWidget(text_, 1);
  layout->addWidget(level_);
  layout->addWidget(button);

  patience_.setSingleShot(true);
  patience_.setInterval(kPatienceMilliseconds);
  connect(&patience_, &QTimer::timeout, this, &SignalLine::Announce);
  connect(&player_, &Player::Changed, this, &SignalLine::Follow);
  connect(&player_, &Player::LevelChanged, this, &SignalLine::ShowLevel);
}

void SignalLine::Follow() {
  if (player_.CurrentSignal() == Player::Signal::Connecting) {
    if (!isVisible()) return patience_.isActive() ? void() : patience_.start();
  } else {
    patience_.stop();
  }
  Announce();
}

void SignalLine::Announce() {
  const QString state = player_.StateText();
  const QString source = player_.SourceName();
  const bool wanted = player_.CurrentSignal() != Player::Signal::Sound && !state.isEmpty();
  if (wanted) {
    const QString text = source.isEmpty() ? state : tr("%1: %2").arg(source, state);
    text_->setText(text);
    text_->setToolTip(text);
    level_->setValue(level_->minimum()); // not that of the sound before
  }
  emit Wanted(wanted);
}

void SignalLine::ShowLevel(double level) {
  if (isVisible()) level_->setValue(qRound(level * kLevelSteps));
}

} // namespace halvenor
