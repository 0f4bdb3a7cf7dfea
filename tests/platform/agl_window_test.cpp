// Drawing into windows, on an X server and a Wayland compositor of the suite's own.
#include "tests/platform/gl_fixture.h"
#include "tests/support/process_use.h"
#include "tests/support/servers.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glx.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <wayland-client.h>

#include <cstring>
#include <fstream>
#include <xdg-shell-client-protocol.h>
// After the header above, whose declarations make these definitions C++, too.
#include <xdg-shell-protocol-code.h>

namespace halvenor {
namespace {

/// The top-left part of a window, all of which must lie on the screen.
Image ReadImage(Display* display, Window window, int width, int height) {
  XImage* read = XGetImage(display, window, 0, 0, static_cast<unsigned>(width),
                           static_cast<unsigned>(height), AllPlanes, ZPixmap);
  Image image{width, height, {}};
  for (int i = 0; i < width * height; ++i) {
    const auto pixel = XGetPixel(read, i % width, i / width);
    image.pixels.push_back({static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255),
                            static_cast<int>(pixel & 255)});
  }
  XDestroyImage(read);
  return image;
}

int MappedPictures() {
  std::ifstream maps("/proc/self/maps");
  int count = 0;
  for (std::string line; std::getline(maps, line);)
    if (line.find("halvenor-picture") != line.npos) ++count;
  return count;
}

/// A host's X11 connection, with a window.
struct X11Host {
  X11Host() {
    if (display == nullptr) return;
    window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 64, 48, 0, 0, 0);
    XMapWindow(display, window);
    port.kind = kHalvenorPortX11Window;
    port.x11DisplayName = server.DisplayName().c_str();
    port.x11Window = window;
    Resize(64, 48);
  }
  ~X11Host() {
    if (display != nullptr) XCloseDisplay(display);
  }
  X11Host(const X11Host&) = delete;
  X11Host& operator=(const X11Host&) = delete;

  [[nodiscard]] bool IsThere() const { return window != 0; }
  void Show() {}
  void Resize(int width, int height) {
    XResizeWindow(display, window, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(display, False);
    port.bounds = MakeRect(width, height);
  }
  /// A picture of its own before the quarters: neither buffer of a swap may be stale.
  static void Draw(const TestContext& context, int width, int height) {
    FillPixels(0, 0, width, height, kBlack);
    aglSwapBuffers(context.context);
    DrawQuarters(width, height);
    aglSwapBuffers(context.context);
  }
  /// What shows, and where the window's corner is in it.
  Image Look(int& /*left*/, int& /*top*/) const {
    return ReadImage(display, window, port.bounds.right, port.bounds.bottom);
  }

  XServer server;
  Display* display = XOpenDisplay(server.DisplayName().c_str());
  Window window = 0;
  HalvenorPort port{};
};

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

template <class Host>
class WindowTest : public GlTest {
protected:
  void SetUp() override { ASSERT_TRUE(host.IsThere()) << "no server started"; }

  void DrawAndExpect(const TestContext& context, int x, int y, int width, int height) {
    std::string fault;
    // A compositor that has not given back a buffer drops pictures: draw until one shows.
    Eventually([&] {
      host.Draw(context, width, height);
      int left = 0;
      int top = 0;
      const Image image = host.Look(left, top);
      fault = QuartersFault(image, left + x, top + port.bounds.bottom - y - height, width, height);
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

  void ExpectPicturesInTheirPlaceAtEverySize() {
    host.Show();
    const TestContext context(&port);
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    DrawAndExpect(context, 0, 0, 64, 48);
    context.SetRect(7, 5, 30, 20);
    ASSERT_TRUE(aglUpdateContext(context.context));
    DrawAndExpect(context, 7, 5, 30, 20);
    for (const auto& [width, height] : {std::pair{200, 100}, {32, 20}}) {
      host.Resize(width, height);
      context.SetRect(0, 0, width, height);
      ASSERT_TRUE(aglUpdateContext(context.context));
      DrawAndExpect(context, 0, 0, width, height);
    }
    EXPECT_EQ(log.Take(), std::vector<std::string>());
  }

  void ExpectNothingLeftBehind() {
    host.Show();
    std::ptrdiff_t files = 0;
    for (int i = 0; i < 20; ++i) {
      const TestContext context(&port);
      ASSERT_TRUE(aglSetCurrentContext(context.context));
      DrawMany(context);
      if (i == 5) files = OpenFiles();
    }
    EXPECT_LE(OpenFiles(), files);
    EXPECT_LE(MappedPictures(), 4);
  }

  Host host;
  HalvenorPort& port = host.port;
};

using X11Test = WindowTest<X11Host>;
using WaylandTest = WindowTest<WaylandHost>;

TEST_F(X11Test, PicturesAreShownInTheirPlaceAndFollowTheWindowsSize) {
  ExpectPicturesInTheirPlaceAtEverySize();
}
TEST_F(WaylandTest, PicturesAreShownInTheirPlaceAndFollowTheWindowsSize) {
  ExpectPicturesInTheirPlaceAtEverySize();
}
TEST_F(X11Test, OpeningAndClosingLeavesNothing) {
  ExpectNothingLeftBehind();
}
TEST_F(WaylandTest, OpeningAndClosingLeavesNothing) {
  ExpectNothingLeftBehind();
}

TEST_F(X11Test, AWindowMayVanishWhileItIsDrawnTo) {
  XSetErrorHandler([](Display*, XErrorEvent*) {
    ADD_FAILURE() << "an error came to the host";
    return 0;
  });
  const TestContext context(&port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawAndExpect(context, 0, 0, 64, 48);
  XDestroyWindow(host.display, host.window);
  XSync(host.display, False);
  for (int i = 0; i < 10; ++i) {
    DrawQuarters(64, 48);
    aglSwapBuffers(context.context);
    aglSetCurrentContext(nullptr);
    EXPECT_TRUE(aglSetCurrentContext(context.context));
  }
  port.bounds = MakeRect(80, 80);
  aglUpdateContext(context.context);
  aglSwapBuffers(context.context);

  // A context that only now comes to the window cannot show anything there, and says so.
  const TestContext late(&port);
  EXPECT_FALSE(aglSetCurrentContext(late.context));
  EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_DRAWABLE});
  EXPECT_LE(log.Take().size(), 3U) << "one line per problem, not per frame";
  XSetErrorHandler(nullptr);
}

TEST_F(X11Test, TheHostsGlxContextIsPutBack) {
  int wanted[] = {GLX_RGBA, GLX_DOUBLEBUFFER, None};
  XVisualInfo* visual = glXChooseVisual(host.display, DefaultScreen(host.display), wanted);
  ASSERT_NE(visual, nullptr);
  const GLXContext hosts = glXCreateContext(host.display, visual, nullptr, True);
  XFree(visual);
  ASSERT_TRUE(glXMakeCurrent(host.display, host.window, hosts));

  OffscreenPort offscreen(16, 16);
  TestContext context(&offscreen.port);
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    DrawQuarters(16, 16);
    aglSwapBuffers(context.context);
    aglSetCurrentContext(nullptr);
    EXPECT_EQ(glXGetCurrentContext(), hosts);
    EXPECT_EQ(glXGetCurrentDrawable(), host.window);
  }
  EXPECT_EQ(QuartersFault(offscreen.image, 0, 0, 16, 16), "");
  context.Destroy();
  EXPECT_EQ(glXGetCurrentContext(), hosts);
  EXPECT_NE(::glGetString(GL_VERSION), nullptr);
  glXMakeCurrent(host.display, None, nullptr);
  glXDestroyContext(host.display, hosts);
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
