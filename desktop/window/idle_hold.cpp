#include "desktop/window/idle_hold.h"

#include "desktop/window/window_system.h"
#include "platform/clock.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>

#include <algorithm>

namespace halvenor {
namespace {

constexpr int kLookMilliseconds = 500;

bool IsStirring(QEvent::Type type) {
  return type == QEvent::Expose || type == QEvent::Resize || type == QEvent::Show;
}

} // namespace

IdleHold::IdleHold(QWidget& window, const Player& player) : window_(window), player_(player) {
  clock_.start();
  window.installEventFilter(this);
  connect(&timer_, &QTimer::timeout, this, &IdleHold::Look);
  connect(&player, &Player::Changed, this, &IdleHold::LookSoon);
  connect(&player, &Player::TrackChanged, this, &IdleHold::Stir);
  timer_.setTimerType(Qt::CoarseTimer);
  timer_.start(kLookMilliseconds);
}

IdleHold::~IdleHold() {
  End();
}

void IdleHold::SetKeepsDrawing(bool keeps) {
  rule_.SetKeepsDrawing(keeps);
  LookSoon();
}

void IdleHold::Stir() {
  rule_.Stir(Now());
  LookSoon();
}

void IdleHold::End() {
  ended_ = true;
  timer_.stop();
  clock::Release();
}

bool IdleHold::eventFilter(QObject*, QEvent* event) {
  if (IsStirring(event->type())) Stir();
  if (event->type() == QEvent::Hide || event->type() == QEvent::WindowStateChange) LookSoon();
  return false;
}

// The cause may lie inside a message to the plug-in, where the clock must not be touched.
void IdleHold::LookSoon() {
  QMetaObject::invokeMethod(this, &IdleHold::Look, Qt::QueuedConnection);
}

void IdleHold::Look() {
  if (ended_) return;
  if (nativeWindow_ != window_.windowHandle()) {
    nativeWindow_ = window_.windowHandle();
    if (nativeWindow_) nativeWindow_->installEventFilter(this);
  }
  const bool isSeen = IsSeen();
  rule_.SetSeen(isSeen);
  emit Looked(isSeen);
  rule_.SetAccompanied(IsAccompanied());
  if (player_.CurrentSignal() == Player::Signal::Sound) rule_.Stir(Now());
  if (rule_.Holds(Now())) {
    timer_.stop();
    clock::Hold();
  } else {
    clock::Release();
    if (!timer_.isActive()) timer_.start(kLookMilliseconds);
    // A Wayland window learns that it is hidden only by frames that the compositor does not ask
    // for, so it has to paint something.
    if (IsOnWayland()) window_.update(0, 0, 1, 1);
  }
}

bool IdleHold::IsSeen() const {
  return window_.isVisible() && !window_.isMinimized() && nativeWindow_ &&
         nativeWindow_->isExposed();
}

bool IdleHold::IsAccompanied() const {
  const QWindowList windows = QGuiApplication::topLevelWindows();
  return std::any_of(windows.begin(), windows.end(), [this](const QWindow* window) {
    const Qt::WindowType type = window->type();
    return window != nativeWindow_ && window->isVisible() &&
           (type == Qt::Window || type == Qt::Dialog);
  });
}

} // namespace halvenor
