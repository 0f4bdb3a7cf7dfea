#include "tests/platform/window_test.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <wayland-client.h>

#include <cstring>
#include <xdg-shell-client-protocol.h>
// After the header above, whose declarations make these definitions C++, too.
#include <xdg-shell-protocol-code.h>

namespace halvenor {
namespace {

/// A host's Wayland connection, with a surface that can be made a window.
struct WaylandHost {
  WaylandHost() {
    if (display == nullptr) return;
    wl_registry* registry = Keep(wl_display_get_registry(display));
    static constexpr wl_registry_listener kListener = {
        [](void* self, wl_registry* all, std::uint32_t name, const char* interface,
           std::uint32_t /*version*/) {
          auto* host = static_cast<WaylandHost*>(self);
          if (std::strcmp(interface, wl_compositor_interface.name) == 0)
            host->compositor = host->Keep(static_cast<wl_compositor*>(
                wl_registry_bind(all, name, &wl_compositor_interface, 1)));
          if (std::strcmp(interface, xdg_wm_base_interface.name) == 0)
            host->shell = host->Keep(
                static_cast<xdg_wm_base*>(wl_registry_bind(all, name, &xdg_wm_base_interface, 1)));
        },
        [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(registry, &kListener, this);
    wl_display_roundtrip(display);
    if (!IsThere()) return;
    surface = Keep(wl_compositor_create_surface(compositor));
    port.kind = kHalvenorPortWaylandSurface;
    port.waylandDisplay = display;
    port.waylandSurface = surface;
    Resize(64, 48);
  }
  ~WaylandHost() {
    for (auto proxy = proxies.rbegin(); proxy != proxies.rend(); ++proxy)
      wl_proxy_destroy(*proxy);
    if (display != nullptr) wl_display_disconnect(display);
    if (screen != nullptr) XCloseDisplay(screen);
  }
  WaylandHost(const WaylandHost&) = delete;
  WaylandHost& operator=(const WaylandHost&) = delete;

  [[nodiscard]] bool IsThere() const { return compositor != nullptr && shell != nullptr; }
  /// Disconnecting does not free the objects of a connection.
  template <typename Object>
  Object* Keep(Object* object) {
    proxies.push_back(reinterpret_cast<wl_proxy*>(object));
    return object;
  }
  /// Makes the surface a window; it shows with its first picture.
  void Show() {
    xdg_surface* window = Keep(xdg_wm_base_get_xdg_surface(shell, surface));
    static constexpr xdg_surface_listener kListener = {
        [](void*, xdg_surface* configured, std::uint32_t serial) {
          xdg_surface_ack_configure(configured, serial);
        }};
    xdg_surface_add_listener(window, &kListener, nullptr);
    Keep(xdg_surface_get_toplevel(window));
    wl_surface_commit(surface);
    wl_display_roundtrip(display);
  }
  void Resize(int width, int height) { port.bounds = MakeRect(width, height); }
  void Draw(const TestContext& context, int width, int height) const {
    DrawQuarters(width, height);
    aglSwapBuffers(context.context);
    wl_display_roundtrip(display);
  }
  Image Look(int& left, int& top) const {
    left = (320 - port.bounds.right) / 2;
    top = (240 - port.bounds.bottom) / 2;
    return ReadImage(screen, DefaultRootWindow(screen), 320, 240);
  }

  XServer xServer;
  WaylandServer server{xServer};
  Display* screen = XOpenDisplay(xServer.DisplayName().c_str());
  wl_display* display = wl_display_connect(server.SocketName().c_str());
  std::vector<wl_proxy*> proxies;
  wl_compositor* compositor = nullptr;
  xdg_wm_base* shell = nullptr;
  wl_surface* surface = nullptr;
  HalvenorPort port{};
};

using WaylandTest = WindowTest<WaylandHost>;

TEST_F(WaylandTest, PicturesAreShownInTheirPlaceAndFollowTheWindowsSize) {
  ExpectPicturesInTheirPlaceAtEverySize();
}
TEST_F(WaylandTest, OpeningAndClosingLeavesNothing) {
  ExpectNothingLeftBehind();
}

// Without a role the surface is never shown; nobody reads the host's connection meanwhile.
TEST_F(WaylandTest, AHiddenSurfaceDoesNotBlock) {
  const TestContext context(&port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawMany(context);
  EXPECT_EQ(wl_display_get_error(host.display), 0);
}

TEST_F(WaylandTest, AFrozenCompositorDoesNotBlock) {
  host.Show();
  const TestContext context(&port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawAndExpect(context, 0, 0, 64, 48);
  host.server.Freeze();
  DrawMany(context);
  EXPECT_LE(MappedPictures(), 4) << "pictures are not dropped";
  host.server.Thaw();
  host.Resize(100, 80);
  ASSERT_TRUE(aglUpdateContext(context.context));
  DrawAndExpect(context, 0, 0, 100, 80);
}

TEST_F(WaylandTest, EglOnTheConnectionIsLeftAsItWasFound) {
  const EGLDisplay egl = eglGetPlatformDisplay(EGL_PLATFORM_WAYLAND_KHR, host.display, nullptr);
  for (const bool hostUsesIt : {false, true}) {
    if (hostUsesIt) {
      ASSERT_TRUE(eglInitialize(egl, nullptr, nullptr));
    }
    TestContext context(&port);
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    DrawMany(context);
    context.Destroy();
    EXPECT_EQ(eglQueryString(egl, EGL_VERSION) != nullptr, hostUsesIt);
  }
  eglTerminate(egl);
}

} // namespace
} // namespace halvenor
