// Drawing into Wayland surfaces, on a compositor of the suite's own.
#include "tests/platform/gl_fixture.h"
#include "tests/platform/servers.h"
#include "tests/platform/x11_image.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <wayland-client.h>

#include <cstring>
#include <fstream>
#include <vector>
#include <xdg-shell-client-protocol.h>
// After the header above, whose declarations make these definitions C++, too.
#include <xdg-shell-protocol-code.h>

namespace halvenor {
namespace {

/// The host's side: a connection, a surface that can be made a window, and what the screen shows.
class WaylandTest : public GlTest {
protected:
  void SetUp() override {
    GlTest::SetUp();
    ASSERT_NE(server.SocketName(), "") << "weston did not start";
    screen = XOpenDisplay(xServer.DisplayName().c_str());
    display = wl_display_connect(server.SocketName().c_str());
    ASSERT_NE(display, nullptr);
    wl_registry* registry = Keep(wl_display_get_registry(display));
    static constexpr wl_registry_listener kListener = {
        [](void* self, wl_registry* all, std::uint32_t name, const char* interface,
           std::uint32_t /*version*/) {
          auto* test = static_cast<WaylandTest*>(self);
          if (std::strcmp(interface, wl_compositor_interface.name) == 0)
            test->compositor = test->Keep(static_cast<wl_compositor*>(
                wl_registry_bind(all, name, &wl_compositor_interface, 1)));
          if (std::strcmp(interface, xdg_wm_base_interface.name) == 0)
            test->shell = test->Keep(
                static_cast<xdg_wm_base*>(wl_registry_bind(all, name, &xdg_wm_base_interface, 1)));
        },
        [](void*, wl_registry*, std::uint32_t) {}};
    wl_registry_add_listener(registry, &kListener, this);
    wl_display_roundtrip(display);
    ASSERT_NE(compositor, nullptr);
    ASSERT_NE(shell, nullptr);
    surface = Keep(wl_compositor_create_surface(compositor));
    port.kind = kHalvenorPortWaylandSurface;
    port.bounds = MakeRect(64, 48);
    port.waylandDisplay = display;
    port.waylandSurface = surface;
  }
  void TearDown() override {
    for (auto proxy = proxies.rbegin(); proxy != proxies.rend(); ++proxy)
      wl_proxy_destroy(*proxy);
    if (display != nullptr) wl_display_disconnect(display);
    if (screen != nullptr) XCloseDisplay(screen);
    GlTest::TearDown();
  }

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

  void DrawAndExpect(const TestContext& context, int x, int y, int width, int height) {
    const int left = (320 - port.bounds.right) / 2 + x;
    const int top = (240 - port.bounds.bottom) / 2 + port.bounds.bottom - y - height;
    std::string fault;
    // A picture is dropped while the compositor has not given back a buffer: draw until it shows.
    Eventually([&] {
      DrawQuarters(width, height);
      aglSwapBuffers(context.context);
      wl_display_roundtrip(display);
      const Image image = ReadImage(screen, DefaultRootWindow(screen), 320, 240);
      fault = QuartersFault(image, left, top, width, height);
      return fault.empty();
    });
    EXPECT_EQ(fault, "");
  }

  /// Draws so many pictures that no stock of buffers lasts.
  void DrawMany(const TestContext& context) const {
    for (int i = 0; i < 50; ++i) {
      DrawQuarters(port.bounds.right, port.bounds.bottom);
      aglSwapBuffers(context.context);
    }
  }

  XServer xServer;
  WaylandServer server{xServer};
  Display* screen = nullptr;
  wl_display* display = nullptr;
  std::vector<wl_proxy*> proxies;
  wl_compositor* compositor = nullptr;
  xdg_wm_base* shell = nullptr;
  wl_surface* surface = nullptr;
  HalvenorPort port{};
};

TEST_F(WaylandTest, PicturesAreShownInTheirPlaceAndFollowTheWindowsSize) {
  Show();
  const TestContext context(&port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawAndExpect(context, 0, 0, 64, 48);
  context.SetRect(7, 5, 30, 20);
  ASSERT_TRUE(aglUpdateContext(context.context));
  DrawAndExpect(context, 7, 5, 30, 20);
  for (const auto& [width, height] : {std::pair{200, 100}, {32, 20}}) {
    port.bounds = MakeRect(width, height);
    context.SetRect(0, 0, width, height);
    ASSERT_TRUE(aglUpdateContext(context.context));
    DrawAndExpect(context, 0, 0, width, height);
  }
  EXPECT_EQ(log.size(), 0U) << log.front();
}

// Without a role the surface is never shown; nobody reads the host's connection meanwhile.
TEST_F(WaylandTest, AHiddenSurfaceDoesNotBlock) {
  const TestContext context(&port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawMany(context);
  EXPECT_EQ(wl_display_get_error(display), 0);
}

int MappedPictures() {
  std::ifstream maps("/proc/self/maps");
  int count = 0;
  for (std::string line; std::getline(maps, line);)
    if (line.find("halvenor-picture") != line.npos) ++count;
  return count;
}

TEST_F(WaylandTest, AFrozenCompositorDoesNotBlock) {
  Show();
  const TestContext context(&port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawAndExpect(context, 0, 0, 64, 48);
  server.Freeze();
  DrawMany(context);
  EXPECT_LE(MappedPictures(), 4) << "pictures are not dropped";
  server.Thaw();
  port.bounds = MakeRect(100, 80);
  ASSERT_TRUE(aglUpdateContext(context.context));
  DrawAndExpect(context, 0, 0, 100, 80);
}

TEST_F(WaylandTest, OpeningAndClosingLeavesNothing) {
  Show();
  std::ptrdiff_t files = 0;
  for (int i = 0; i < 20; ++i) {
    const TestContext context(&port);
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    DrawMany(context);
    if (i == 5) files = OpenFiles();
    if (i == 19) {
      EXPECT_LE(OpenFiles(), files);
      EXPECT_LE(MappedPictures(), 4);
    }
  }
}

TEST_F(WaylandTest, EglOnTheConnectionIsLeftAsItWasFound) {
  const EGLDisplay egl = eglGetPlatformDisplay(EGL_PLATFORM_WAYLAND_KHR, display, nullptr);
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
