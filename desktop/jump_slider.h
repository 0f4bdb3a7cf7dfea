// A slider that goes where somebody clicks.
#pragma once

#include <QtGui/QMouseEvent>
#include <QtWidgets/QSlider>
#include <QtWidgets/QStyle>

namespace halvenor {

class JumpSlider final : public QSlider {
  Q_OBJECT

public:
  JumpSlider() : QSlider(Qt::Horizontal) {
    // A click leaves the keyboard with the picture; Tab leads here.
    setFocusPolicy(Qt::TabFocus);
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

} // namespace halvenor
