#include "desktop/drawing_area.h"

#include <QtCore/QEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/qpa/qplatformnativeinterface.h>
#include <QtGui/qpa/qplatformwindow.h>
#include <X11/Xlib.h> // after Qt: it defines common words

#include <algorithm>
#include <limits>

namespace halvenor {
namespace {

bool OnX11() {
  return QGuiApplication::platformName() == QLatin1String("xcb");
}
bool OnWayland() {
  return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

std::int16_t PortCoordinate(double pixels) {
  constexpr double kLargest = std::numeric_limits<std::int16_t>::max();
  return static_cast<std::int16_t>(std::clamp(pixels, 1.0, kLargest));
}

// The native window's own size, which no rounding of scale factors has touched.
Rect NativeBounds(const QPlatformWindow& window) {
  const QSize size = window.geometry().size();
  const double scale = window.devicePixelRatio();
  return {0, 0, PortCoordinate(size.height() * scale), PortCoordinate(size.width() * scale)};
}

bool SameSize(const Rect& a, const Rect& b) {
  return a.bottom == b.bottom && a.right == b.right;
}

void FillX11(HalvenorPort& port, WId window) {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  port.kind = kHalvenorPortX11Window;
  port.x11DisplayName = DisplayString(x11->display());
  port.x11Window = window;
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
  // The keyboard stays with the window around it, wherever somebody clicks.
  setFlag(Qt::WindowDoesNotAcceptFocus);
  connect(this, &QWindow::screenChanged, this, &DrawingArea::UpdateBounds);
}

DrawingArea::~DrawingArea() {
  Vanish();
  destroy(); // while the overrides of this class still hear of it
}

bool DrawingArea::IsPossible() {
  return OnX11() || OnWayland();
}

GrafPtr DrawingArea::Port() {
  return present_ ? &port_ : nullptr;
}

bool DrawingArea::event(QEvent* event) {
  if (event->type() == QEvent::Hide) Vanish();
  if (event->type() == QEvent::PlatformSurface &&
      static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
          QPlatformSurfaceEvent::SurfaceAboutToBeDestroyed) {
    Vanish();
  }
  return QWindow::event(event);
}

void DrawingArea::exposeEvent(QExposeEvent*) {
  if (!present_) {
    if (isExposed()) Appear();
  } else {
    UpdateBounds(); // a change of scale alone says no more than this
  }
}

void DrawingArea::resizeEvent(QResizeEvent*) {
  UpdateBounds();
}

void DrawingArea::keyPressEvent(QKeyEvent* event) {
  emit KeyPressed(event);
}

void DrawingArea::Appear() {
  port_ = {};
  port_.bounds = NativeBounds(*handle());
  if (OnX11()) {
    FillX11(port_, winId());
  } else if (OnWayland()) {
    FillWayland(port_, *this);
    if (!port_.waylandSurface) return;
    // Hiding a window takes its surface away before the window hears of it; only Qt's own object
    // for the window says so in time.
    connect(dynamic_cast<QObject*>(handle()), SIGNAL(wlSurfaceDestroyed()), this, SLOT(Vanish()),
            Qt::UniqueConnection);
  } else {
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

void DrawingArea::UpdateBounds() {
  if (!present_ || !handle()) return;
  const Rect bounds = NativeBounds(*handle());
  if (SameSize(bounds, port_.bounds)) return;
  port_.bounds = bounds;
  emit Resized();
}

} // namespace halvenor
