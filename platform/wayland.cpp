// Wayland surfaces: contexts on the host's connection.
#include "platform/agl_errors.h"
#include "platform/egl_window.h"
#include "platform/frame_reader.h"
#include "platform/wayland_shm_surface.h"
#include "platform/window_systems.h"

#include <EGL/eglext.h>
#include <wayland-client.h>
#include <wayland-egl.h>

namespace halvenor::agl {
namespace {

class WaylandDisplay final : public EglDisplay {
public:
  explicit WaylandDisplay(wl_display* native) : native_(native) {}
  /// There is one EGL display for a connection. If the host uses it, too, it is the host's; if not,
  /// it must not outlive the connection, which the host may end any time after this.
  ~WaylandDisplay() override {
    if (IsFirstUser()) Terminate();
  }

  bool Open() { return Initialise(EGL_PLATFORM_WAYLAND_KHR, native_); }

  [[nodiscard]] bool Serves(const HalvenorPort& port) const override {
    return port.kind == kHalvenorPortWaylandSurface && port.waylandDisplay == native_;
  }

private:
  wl_display* native_;
};

class WaylandEglWindow final : public EglWindow {
public:
  WaylandEglWindow(EGLDisplay display, wl_surface* surface)
      : EglWindow(display), surface_(surface), window_(wl_egl_window_create(surface, 1, 1)) {}
  ~WaylandEglWindow() override {
    DestroySurface();
    if (window_ != nullptr) wl_egl_window_destroy(window_);
  }

  bool Open() { return window_ != nullptr && CreateSurface(window_, 0); }

private:
  void Follow(const Picture& picture) override {
    wl_egl_window_resize(window_, picture.port.width, picture.port.height, 0, 0);
    SetSurfaceScale(surface_, picture.surfaceScale);
  }

  wl_surface* surface_;
  wl_egl_window* window_;
};

} // namespace

std::shared_ptr<EglDisplay> OpenWaylandDisplay(const HalvenorPort& port) {
  auto display = std::make_shared<WaylandDisplay>(static_cast<wl_display*>(port.waylandDisplay));
  return display->Open() ? display : nullptr;
}

std::unique_ptr<Presenter> MakeWaylandPresenter(EglDisplay& display, const HalvenorPort& port) {
  auto* surface = static_cast<wl_surface*>(port.waylandSurface);
  if (display.IsSoftware() && FrameReader::CanInvert()) {
    auto* connection = static_cast<wl_display*>(port.waylandDisplay);
    if (auto presenter = MakeWaylandShmSurface(connection, surface)) return presenter;
  }
  auto window = std::make_unique<WaylandEglWindow>(display.Handle(), surface);
  if (!window->Open()) return nullptr;
  return window;
}

} // namespace halvenor::agl
