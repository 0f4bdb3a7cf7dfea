#include "tests/platform/window_test.h"

#include <GL/glx.h>

namespace halvenor {
namespace {

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

using X11Test = WindowTest<X11Host>;

TEST_F(X11Test, PicturesAreShownInTheirPlaceAndFollowTheWindowsSize) {
  ExpectPicturesInTheirPlaceAtEverySize();
}
TEST_F(X11Test, OpeningAndClosingLeavesNothing) {
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

} // namespace
} // namespace halvenor
