#include "platform/wayland/wayland_window_system.h"

#include "platform/driver/egl_window.h"
#include "platform/wayland/wayland_shm_surface.h"

#include <EGL/eglext.h>
#include <wayland-client.h>
#include <wayland-egl.h>

namespace halvenor::agl {
namespace {

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

class WaylandWindowSystem final : public WindowSystem {
public:
  explicit WaylandWindowSystem(wl_display* native) : native_(native) {}
  /// There is one EGL display for a connection. If the host uses it, too, it is the host's; if not,
  /// it must not outlive the connection, which the host may end any time after this.
  ~WaylandWindowSystem() override {
    if (egl_.IsFirstUser()) egl_.Terminate();
  }

  [[nodiscard]] bool Serves(const HalvenorPort& port) const override {
    return port.kind == kHalvenorPortWaylandSurface && port.waylandDisplay == native_;
  }

  std::unique_ptr<Presenter> MakeMemoryPresenter(const HalvenorPort& port) override {
    return MakeWaylandShmSurface(native_, static_cast<wl_surface*>(port.waylandSurface));
  }

  std::unique_ptr<Presenter> MakeEglPresenter(const HalvenorPort& port) override {
    auto window = std::make_unique<WaylandEglWindow>(egl_.Handle(),
                                                     static_cast<wl_surface*>(port.waylandSurface));
    if (!window->Open()) return nullptr;
    return window;
  }

private:
  bool OpenEgl(EglDisplay& display) override {
    return display.Initialize(EGL_PLATFORM_WAYLAND_KHR, native_);
  }

  wl_display* native_;
};

} // namespace

std::shared_ptr<WindowSystem> OpenWaylandWindowSystem(const HalvenorPort& port) {
  return std::make_shared<WaylandWindowSystem>(static_cast<wl_display*>(port.waylandDisplay));
}

} // namespace halvenor::agl
