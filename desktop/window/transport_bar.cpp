#include "desktop/window/transport_bar.h"

#include <QtCore/QSignalBlocker>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QStyle>

namespace halvenor {
namespace {

constexpr int kPositionMilliseconds = 500;
constexpr int kLoudest = 100; // the volume slider is in percent

QString Clock(double seconds) {
  const int whole = static_cast<int>(seconds);
  const QString tail = QStringLiteral("%1:%2")
                           .arg(whole / 60 % 60, whole >= 3600 ? 2 : 1, 10, QLatin1Char('0'))
                           .arg(whole % 60, 2, 10, QLatin1Char('0'));
  return whole >= 3600 ? QStringLiteral("%1:%2").arg(whole / 3600).arg(tail) : tail;
}

// Jumps to where it is clicked.
class JumpSlider final : public QSlider {
public:
  JumpSlider() : QSlider(Qt::Horizontal) {
    setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard focus with the picture
  }

protected:
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() != Qt::LeftButton) return;
    setSliderDown(true);
    Follow(*event);
  }
  void mouseMoveEvent(QMouseEvent* event) override {
    if (isSliderDown()) Follow(*event);
  }
  void mouseReleaseEvent(QMouseEvent*) override { setSliderDown(false); }

private:
  void Follow(const QMouseEvent& event) {
    const int handle = style()->pixelMetric(QStyle::PM_SliderLength, nullptr, this);
    const int x = qRound(event.position().x()) - handle / 2;
    setSliderPosition(
        QStyle::sliderValueFromPosition(minimum(), maximum(), x, qMax(1, width() - handle)));
  }
};

} // namespace

TransportBar::TransportBar(Player& player, ActionMenus& menus) : player_(player) {
  setAccessibleName(tr("Transport"));
  MakeContents(menus);
  timer_.setInterval(kPositionMilliseconds);
  connect(&timer_, &QTimer::timeout, this, &TransportBar::FollowPosition);
  connect(&player_, &Player::Changed, this, &TransportBar::Follow);
  Follow();
}

void TransportBar::MakeContents(ActionMenus& menus) {
  using Sign = MediaButton::Sign;
  auto* previous = new MediaButton(Sign::Previous, menus[UserAction::Previous], tr("Previous"));
  play_ = new MediaButton(Sign::Play, menus[UserAction::PlayPause], tr("Play"));
  auto* next = new MediaButton(Sign::Next, menus[UserAction::Next], tr("Next"));
  mute_ = new MediaButton(Sign::Loud, menus[UserAction::Mute], tr("Mute"));
  time_ = new QLabel;
  seek_ = new JumpSlider;
  seek_->setAccessibleName(tr("Position"));
  volume_ = new JumpSlider;
  volume_->setAccessibleName(tr("Volume"));
  volume_->setRange(0, kLoudest);
  volume_->setPageStep(kLoudest / 10);
  volume_->setFixedWidth(6 * fontMetrics().height());

  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(4, 2, 8, 2);
  layout->setSpacing(4);
  for (QWidget* widget : std::initializer_list<QWidget*>{previous, play_, next})
    layout->addWidget(widget);
  layout->addWidget(seek_, 1);
  layout->addWidget(time_);
  layout->addWidget(mute_);
  layout->addWidget(volume_);

  connect(seek_, &QSlider::valueChanged, this, [this](int seconds) { player_.Seek(seconds); });
  connect(volume_, &QSlider::valueChanged, this,
          [this](int percent) { player_.SetVolume(percent / double{kLoudest}); });
  seek_->setTracking(false); // one seek at the end of a drag
}

void TransportBar::showEvent(QShowEvent*) {
  Follow();
}

void TransportBar::Follow() {
  const bool moves = player_.CurrentMode() == Player::Mode::Playing && !player_.IsPaused();
  moves ? play_->SetSign(MediaButton::Sign::Pause, tr("Pause"))
        : play_->SetSign(MediaButton::Sign::Play, tr("Play"));
  player_.IsMuted() ? mute_->SetSign(MediaButton::Sign::Muted, tr("Unmute"))
                    : mute_->SetSign(MediaButton::Sign::Loud, tr("Mute"));
  const QSignalBlocker still(volume_);
  volume_->setValue(qRound(player_.Volume() * kLoudest));
  FollowPosition();
}

void TransportBar::FollowPosition() {
  const bool plays = player_.CurrentMode() == Player::Mode::Playing;
  const double length = plays ? player_.Length().value_or(0) : 0; // 0: without an end
  seek_->setEnabled(plays && player_.CanSeek());
  if (!seek_->isSliderDown()) {
    const QSignalBlocker still(seek_);
    seek_->setRange(0, static_cast<int>(length));
    seek_->setValue(plays ? static_cast<int>(player_.Position()) : 0);
  }
  QString text;
  if (plays) text = Clock(player_.Position());
  if (length > 0) text = tr("%1 / %2").arg(text, Clock(length));
  time_->setText(text);

  const bool moves = plays && !player_.IsPaused() && isVisible();
  if (moves != timer_.isActive()) moves ? timer_.start() : timer_.stop();
}

} // namespace halvenor
