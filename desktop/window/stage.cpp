#include "desktop/window/stage.h"

#include "desktop/window/window_system.h"

#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtGui/QEnterEvent>
#include <QtGui/QHideEvent>
#include <QtGui/QPainter>
#include <QtGui/QWindow>
#include <QtWidgets/QVBoxLayout>

namespace halvenor {
namespace {

// Longer than a frame of the compositor. This Qt learns on another thread that a frame was shown;
// if the window is hidden at that moment, both threads destroy the same object.
constexpr int kFrameMilliseconds = 50;

} // namespace

Stage::Stage(QWidget& picture, QWidget& bar) : picture_(picture), bar_(bar) {
  // The menu bar returns the keyboard focus only to a widget that had it before.
  setFocusPolicy(Qt::StrongFocus);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  layout->setSpacing(0);
  layout->addWidget(&picture_, 1);
  layout->addWidget(&bar_);
  bar_.setAutoFillBackground(true);
  QSizePolicy place = picture_.sizePolicy();
  place.setRetainSizeWhenHidden(true); // the bar does not move when the picture appears
  picture_.setSizePolicy(place);
  picture_.hide();
}

void Stage::ShowBar(bool shown) {
  bar_.setVisible(shown);
}

void Stage::AddOverlay(QWidget& overlay, Place place) {
  overlay.setWindowFlags(Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
  overlay.setAttribute(Qt::WA_ShowWithoutActivating);
  overlay.setAttribute(Qt::WA_QuitOnClose, false);
  overlay.installEventFilter(this);
  overlays_.push_back({&overlay, place, false});
}

void Stage::ShowOverlay(QWidget& widget, bool shown) {
  for (Overlay& overlay : overlays_) {
    if (overlay.widget != &widget) continue;
    overlay.isWanted = shown;
    Arrange();
    ShowNow(overlay);
  }
}

// Under Wayland a window can be placed within another one only when that is shown; of several, the
// one shown last is on top.
void Stage::ShowAll() {
  picture_.show();
  for (const Overlay& overlay : overlays_)
    ShowNow(overlay);
}

void Stage::ShowNow(const Overlay& overlay) {
  if (!overlay.isWanted) return HideSoon(overlay);
  overlay.widget->setUpdatesEnabled(true);
  if (!isExposed_ || overlay.widget->isVisible()) return;
  overlay.widget->winId(); // creates the window
  overlay.widget->windowHandle()->setParent(window()->windowHandle());
  overlay.widget->show();
  overlay.widget->raise();
}

void Stage::HideSoon(const Overlay& overlay) {
  if (!overlay.widget->isVisible()) return;
  overlay.widget->setUpdatesEnabled(false);
  QTimer::singleShot(kFrameMilliseconds, overlay.widget, [widget = overlay.widget] {
    if (!widget->updatesEnabled()) widget->hide();
  });
}

void Stage::LetPaintingEnd() {
  window()->setUpdatesEnabled(false);
  for (const Overlay& overlay : overlays_)
    overlay.widget->setUpdatesEnabled(false);
  if (IsOnWayland()) QThread::msleep(kFrameMilliseconds);
}

void Stage::LetPaintingBegin() {
  window()->setUpdatesEnabled(true);
}

void Stage::Arrange() {
  const QPoint origin = mapTo(window(), QPoint());
  int bottom = picture_.isVisible() ? picture_.geometry().bottom() + 1 : height();
  for (const Overlay& overlay : overlays_) {
    QSize wanted = overlay.widget->sizeHint();
    if (overlay.place == Place::Bottom && overlay.widget->hasHeightForWidth())
      wanted.setHeight(overlay.widget->heightForWidth(width()));
    QRect place(QPoint(), wanted.boundedTo(size()));
    if (overlay.place == Place::Middle) {
      place.moveCenter(QRect(0, 0, width(), qMax(bottom, place.height())).center());
    } else if (overlay.isWanted) {
      place = QRect(0, bottom - wanted.height(), width(), wanted.height());
      bottom = place.top();
    }
    overlay.widget->setGeometry(place.translated(origin));
  }
}

// Visible until the plug-in's first frame.
void Stage::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), Qt::black);
}

void Stage::resizeEvent(QResizeEvent*) {
  Arrange();
}

void Stage::showEvent(QShowEvent*) {
  window()->windowHandle()->installEventFilter(this);
}

void Stage::hideEvent(QHideEvent* event) {
  if (event->spontaneous()) return; // minimized: everything still exists
  isExposed_ = false;
  for (const Overlay& overlay : overlays_)
    overlay.widget->hide();
  picture_.hide();
}

bool Stage::eventFilter(QObject* watched, QEvent* event) {
  const auto* native = qobject_cast<const QWindow*>(watched);
  if (!native) {
    if (event->type() == QEvent::LayoutRequest) Arrange(); // of an overlay
    if (event->type() == QEvent::Enter)
      emit PointerOverOverlay(static_cast<QEnterEvent*>(event)->globalPosition().toPoint());
  } else if (event->type() == QEvent::Expose && !isExposed_ && native->isExposed()) {
    isExposed_ = true;
    QMetaObject::invokeMethod(this, &Stage::ShowAll, Qt::QueuedConnection);
  }
  return false;
}

} // namespace halvenor
