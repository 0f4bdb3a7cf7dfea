// Drawing into X11 windows, on an X server of the suite's own.
#include "tests/platform/gl_fixture.h"
#include "tests/platform/servers.h"
#include "tests/platform/x11_image.h"

#include <GL/glx.h>
#include <X11/Xlib.h>

namespace halvenor {
namespace {

/// The host's side: a connection and a window of its own.
class X11Test : public GlTest {
protected:
  void SetUp() override {
    GlTest::SetUp();
    ASSERT_NE(server.DisplayName(), "") << "Xvfb did not start";
    display = XOpenDisplay(server.DisplayName().c_str());
    ASSERT_NE(display, nullptr);
    window = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 64, 48, 0, 0, 0);
    XMapWindow(display, window);
    XSync(display, False);
    port.kind = kHalvenorPortX11Window;
    port.bounds = MakeRect(64, 48);
    port.x11DisplayName = server.DisplayName().c_str();
    port.x11Window = window;
  }
  void TearDown() override {
    if (display != nullptr) XCloseDisplay(display);
    GlTest::TearDown();
  }

  /// Draws a picture of its own before the quarters: neither buffer of a swap may be stale.
  void DrawAndExpect(const TestContext& context, int x, int y, int width, int height) {
    const Rect bounds = port.bounds;
    FillPixels(0, 0, width, height, kBlack);
    aglSwapBuffers(context.context);
    DrawQuarters(width, height);
    aglSwapBuffers(context.context);
    const int top = bounds.bottom - y - height;
    std::string fault;
    Eventually([&] {
      const Image image = ReadImage(display, window, bounds.right, bounds.bottom);
      fault = QuartersFault(image, x, top, width, height);
      return fault.empty();
    });
    EXPECT_EQ(fault, "");
  }

  XServer server;
  Display* display = nullptr;
  Window window = 0;
  HalvenorPort port{};
};

TEST_F(X11Test, PicturesAreShownInTheirPlaceAndFollowTheWindowsSize) {
  const TestContext context(&port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawAndExpect(context, 0, 0, 64, 48);
  context.SetRect(7, 5, 30, 20);
  ASSERT_TRUE(aglUpdateContext(context.context));
  DrawAndExpect(context, 7, 5, 30, 20);
  for (const auto& [width, height] : {std::pair{200, 100}, {33, 21}}) {
    XResizeWindow(display, window, static_cast<unsigned>(width), static_cast<unsigned>(height));
    XSync(display, False);
    port.bounds = MakeRect(width, height);
    context.SetRect(0, 0, width, height);
    ASSERT_TRUE(aglUpdateContext(context.context));
    DrawAndExpect(context, 0, 0, width, height);
  }
  EXPECT_EQ(log.size(), 0U) << log.front();
}

TEST_F(X11Test, AWindowMayVanishWhileItIsDrawnTo) {
  XSetErrorHandler([](Display*, XErrorEvent*) {
    ADD_FAILURE() << "an error came to the host";
    return 0;
  });
  const TestContext context(&port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawAndExpect(context, 0, 0, 64, 48);
  XDestroyWindow(display, window);
  XSync(display, False);
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
  EXPECT_EQ(aglGetError(), static_cast<GLenum>(AGL_BAD_DRAWABLE));
  EXPECT_LE(log.size(), 3U) << "one line per problem, not per frame";
  XSetErrorHandler(nullptr);
}

TEST_F(X11Test, OpeningAndClosingLeavesNothing) {
  std::ptrdiff_t files = 0;
  for (int i = 0; i < 20; ++i) {
    const TestContext context(&port);
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    aglSwapBuffers(context.context);
    if (i == 5) files = OpenFiles();
    if (i == 19) {
      EXPECT_EQ(OpenFiles(), files);
    }
  }
}

TEST_F(X11Test, WithoutAServerThereIsNoDisplay) {
  port.x11DisplayName = "localhost:nowhere";
  const TestContext context(&port);
  EXPECT_FALSE(aglSetCurrentContext(context.context));
  EXPECT_EQ(aglGetError(), static_cast<GLenum>(AGL_NO_DISPLAY));
  EXPECT_EQ(log.size(), 1U);
}

TEST_F(X11Test, TheHostsGlxContextIsPutBack) {
  int wanted[] = {GLX_RGBA, GLX_DOUBLEBUFFER, None};
  XVisualInfo* visual = glXChooseVisual(display, DefaultScreen(display), wanted);
  ASSERT_NE(visual, nullptr);
  const GLXContext host = glXCreateContext(display, visual, nullptr, True);
  XFree(visual);
  ASSERT_TRUE(glXMakeCurrent(display, window, host));

  OffscreenPort offscreen(16, 16);
  TestContext context(&offscreen.port);
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    DrawQuarters(16, 16);
    aglSwapBuffers(context.context);
    aglSetCurrentContext(nullptr);
    EXPECT_EQ(glXGetCurrentContext(), host);
    EXPECT_EQ(glXGetCurrentDrawable(), window);
  }
  EXPECT_EQ(QuartersFault(offscreen.image, 0, 0, 16, 16), "");
  context.Destroy();
  EXPECT_EQ(glXGetCurrentContext(), host);
  EXPECT_NE(glGetString(GL_VERSION), nullptr);
  glXMakeCurrent(display, None, nullptr);
  glXDestroyContext(display, host);
}

} // namespace
} // namespace halvenor
