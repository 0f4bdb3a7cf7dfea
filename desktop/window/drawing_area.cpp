#include "desktop/window/drawing_area.h"

#include "desktop/window/window_system.h"

#include <QtCore/QEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QScreen>
#include <QtGui/qpa/qplatformnativeinterface.h>
#include <QtGui/qpa/qplatformscreen.h>
#include <QtGui/qpa/qplatformwindow.h>
#include <X11/Xlib.h> // after Qt: it defines common words

#include <algorithm>
#include <limits>

namespace halvenor {
namespace {

std::int16_t PortCoordinate(double pixels) {
  constexpr double kLargest = std::numeric_limits<std::int16_t>::max();
  return static_cast<std::int16_t>(std::clamp(pixels, 1.0, kLargest));
}

// The window's own scale. Under Wayland this Qt reads the screen's scale only when a window enters
// the screen, not when the scale changes.
double NativeScale(const QPlatformWindow& window) {
  return IsOnWayland() ? window.screen()->devicePixelRatio() : window.devicePixelRatio();
}

// The native window's own size, before any rounding of scale factors.
QSize NativeSize(const QPlatformWindow& window) {
  const QSize size = window.geometry().size();
  const double scale = NativeScale(window);
  return {PortCoordinate(size.width() * scale), PortCoordinate(size.height() * scale)};
}

struct PortSizes {
  QSize bounds;
  QSize output; // empty: the same
  int scale;

  bool operator==(const PortSizes&) const = default;
};

PortSizes SizesOf(const HalvenorPort& port) {
  return {{port.bounds.right, port.bounds.bottom},
          {port.outputWidth, port.outputHeight},
          port.waylandScale};
}

PortSizes SizesFor(const QPlatformWindow& window, QSize picture) {
  const QSize native = NativeSize(window);
  const int scale = IsOnWayland() ? qRound(NativeScale(window)) : 0;
  const bool isSmaller =
      picture.width() < native.width() && picture.height() < native.height() && !picture.isEmpty();
  return isSmaller ? PortSizes{picture, native, scale} : PortSizes{native, {0, 0}, scale};
}

void SetSizes(HalvenorPort& port, const PortSizes& sizes) {
  port.bounds = {0, 0, PortCoordinate(sizes.bounds.height()), PortCoordinate(sizes.bounds.width())};
  port.outputWidth = sizes.output.width();
  port.outputHeight = sizes.output.height();
  port.waylandScale = sizes.scale;
}

void FillX11(HalvenorPort& port, QWindow& window) {
  Display* display = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->display();
  port.kind = kHalvenorPortX11Window;
  port.x11DisplayName = DisplayString(display);
  port.x11Window = window.winId();
  // The background shows where a window grows; Qt would make it white, in the parents as well.
  for (const QWindow* grown = &window; grown; grown = grown->parent())
    XSetWindowBackground(display, grown->winId(), BlackPixel(display, DefaultScreen(display)));
  XClearWindow(display, port.x11Window);
}

void FillWayland(HalvenorPort& port, QWindow& window) {
  QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
  port.kind = kHalvenorPortWaylandSurface;
  port.waylandDisplay = native->nativeResourceForIntegration("wl_display");
  port.waylandSurface = native->nativeResourceForWindow("surface", &window);
}

} // namespace

DrawingArea::DrawingArea() {
  setSurfaceType(QSurface::RasterSurface);
  // The window around it keeps the keyboard focus, wherever somebody clicks.
  setFlag(Qt::WindowDoesNotAcceptFocus);
  connect(this, &QWindow::screenChanged, this, &DrawingArea::FollowScreen);
  FollowScreen(screen());
}

DrawingArea::~DrawingArea() {
  Vanish();
  destroy(); // while the overrides of this class are still called
}

bool DrawingArea::IsPossible() {
  return CurrentWindowSystem() != WindowSystem::Other;
}

GrafPtr DrawingArea::Port() {
  return present_ ? &port_ : nullptr;
}

bool DrawingArea::event(QEvent* event) {
  if (event->type() == QEvent::PlatformSurface &&
      static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
          QPlatformSurfaceEvent::SurfaceAboutToBeDestroyed) {
    Vanish();
  }
  return QWindow::event(event);
}

void DrawingArea::exposeEvent(QExposeEvent*) {
  if (!present_) {
    if (isExposed() && handle()) Appear(); // this may come after the native window is destroyed
  } else {
    UpdateBounds(); // a change of scale alone causes no other event
  }
}

void DrawingArea::resizeEvent(QResizeEvent*) {
  UpdateBounds();
}

void DrawingArea::mouseMoveEvent(QMouseEvent* event) {
  emit PointerMoved(event->globalPosition().toPoint());
}

void DrawingArea::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) emit MenuWanted(event->globalPosition().toPoint());
}

void DrawingArea::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) emit DoubleClicked();
}

void DrawingArea::SetPictureSize(QSize size) {
  pictureSize_ = size;
  UpdateBounds();
}

void DrawingArea::Appear() {
  port_ = {};
  SetSizes(port_, SizesFor(*handle(), pictureSize_));
  switch (CurrentWindowSystem()) {
  case WindowSystem::X11:
    FillX11(port_, *this);
    break;
  case WindowSystem::Wayland:
    FillWayland(port_, *this);
    if (!port_.waylandSurface) return;
    // Hiding a window destroys its surface before the window gets any event; only Qt's own object
    // for the window signals it in time.
    connect(dynamic_cast<QObject*>(handle()), SIGNAL(wlSurfaceDestroyed()), this, SLOT(Vanish()),
            Qt::UniqueConnection);
    break;
  case WindowSystem::Other:
    return;
  }
  present_ = true;
  emit Appeared();
}

void DrawingArea::Vanish() {
  if (!present_) return;
  emit AboutToVanish();
  present_ = false;
}

// The first sign of a change of scale is a new size of the screen.
void DrawingArea::FollowScreen(QScreen* screen) {
  if (screen) {
    connect(screen, &QScreen::geometryChanged, this, &DrawingArea::UpdateBounds,
            Qt::UniqueConnection);
  }
  UpdateBounds();
}

void DrawingArea::UpdateBounds() {
  if (!present_ || !handle()) return;
  const PortSizes sizes = SizesFor(*handle(), pictureSize_);
  if (sizes == SizesOf(port_)) return;
  SetSizes(port_, sizes);
  emit Resized();
}

} // namespace halvenor
