#include "desktop/drawing_area.h"

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

// The window's own scale. Under Wayland this Qt looks at its screen's only when a window comes to
// one, not when the scale is changed.
double NativeScale(const QPlatformWindow& window) {
  return OnWayland() ? window.screen()->devicePixelRatio() : window.devicePixelRatio();
}

// The native window's own size, which no rounding of scale factors has touched.
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
  const int scale = OnWayland() ? qRound(NativeScale(window)) : 0;
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
  // What they show where they grow, the windows around it too, which Qt makes white.
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
  // The keyboard stays with the window around it, wherever somebody clicks.
  setFlag(Qt::WindowDoesNotAcceptFocus);
  connect(this, &QWindow::screenChanged, this, &DrawingArea::FollowScreen);
  FollowScreen(screen());
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
  if (event->type() == QEvent::PlatformSurface &&
      static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
          QPlatformSurfaceEvent::SurfaceAboutToBeDestroyed) {
    Vanish();
  }
  return QWindow::event(event);
}

void DrawingArea::exposeEvent(QExposeEvent*) {
  if (!present_) {
    if (isExposed() && handle()) Appear(); // the last word may come after the native window went
  } else {
    UpdateBounds(); // a change of scale alone says no more than this
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
  if (OnX11()) {
    FillX11(port_, *this);
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

// A change of scale shows in the screen's size before all.
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
