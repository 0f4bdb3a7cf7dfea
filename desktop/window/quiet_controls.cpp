#include "desktop/window/quiet_controls.h"

#include <utility>

namespace halvenor {
namespace {

constexpr int kRestMilliseconds = 2000;

} // namespace

QuietControls::QuietControls(DrawingArea& area, Stage& stage, QWidget& bar)
    : area_(area), stage_(stage), bar_(bar) {
  rest_.setSingleShot(true);
  rest_.setInterval(kRestMilliseconds);
  connect(&rest_, &QTimer::timeout, this, &QuietControls::Rest);
  connect(&area_, &DrawingArea::PointerMoved, this, &QuietControls::Move);
  connect(&stage_, &Stage::PointerOverOverlay, this, &QuietControls::Move);
}

void QuietControls::SetFullScreen(bool fullScreen) {
  if (fullScreen == fullScreen_) return;
  fullScreen_ = fullScreen;
  stage_.ShowBar(!fullScreen && barWanted_);
  stage_.ShowOverlay(bar_, false);
  area_.unsetCursor();
  fullScreen ? rest_.start() : rest_.stop();
}

void QuietControls::SetBarWanted(bool wanted) {
  barWanted_ = wanted;
  if (!fullScreen_) stage_.ShowBar(wanted);
}

void QuietControls::Move(QPoint globalPosition) {
  // Windows that appear or disappear cause events although the pointer has not moved.
  if (!fullScreen_ || std::exchange(last_, globalPosition) == globalPosition) return;
  area_.unsetCursor();
  rest_.start();
  const int fromBottom = stage_.height() - stage_.mapFromGlobal(globalPosition).y();
  if (fromBottom <= 2 * bar_.sizeHint().height()) stage_.ShowOverlay(bar_, true);
}

void QuietControls::Rest() {
  if (bar_.isVisible() && bar_.underMouse()) {
    rest_.start();
    return;
  }
  area_.setCursor(Qt::BlankCursor);
  stage_.ShowOverlay(bar_, false);
}

} // namespace halvenor
