// Contexts beside those of the host and of other threads, and what they leave behind.
#include "tests/platform/gl_fixture.h"
#include "tests/support/process_use.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <thread>

namespace halvenor {
namespace {

class ContextTest : public GlTest {
protected:
  void DrawAndExpect() {
    DrawQuarters(16, 16);
    aglSwapBuffers(context.context);
    EXPECT_EQ(QuartersFault(port.image, 0, 0, 16, 16), "");
  }

  OffscreenPort port{16, 16};
  TestContext context{&port.port};
};

/// A context of the host's own, for another API than the plug-in's, current on this thread.
class HostContext {
public:
  HostContext() {
    display_ = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    EXPECT_TRUE(eglInitialize(display_, nullptr, nullptr));
    eglBindAPI(EGL_OPENGL_ES_API);
    const EGLint version[] = {EGL_CONTEXT_MAJOR_VERSION, 2, EGL_NONE};
    context_ = eglCreateContext(display_, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, version);
    MakeCurrent();
  }
  ~HostContext() {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display_, context_);
  }
  HostContext(const HostContext&) = delete;
  HostContext& operator=(const HostContext&) = delete;

  void MakeCurrent() const {
    EXPECT_TRUE(eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_));
  }
  [[nodiscard]] bool IsCurrent() const {
    return eglGetCurrentContext() == context_ && eglQueryAPI() == EGL_OPENGL_ES_API;
  }

private:
  EGLDisplay display_;
  EGLContext context_;
};

TEST_F(ContextTest, TheHostsEglContextIsPutBack) {
  const HostContext host;
  TestContext other(&port.port);
  aglSetCurrentContext(nullptr);
  EXPECT_TRUE(host.IsCurrent()) << "with nothing of ours current, null does nothing";
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(aglSetCurrentContext(other.context));
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    DrawAndExpect();
    EXPECT_FALSE(host.IsCurrent());
    EXPECT_TRUE(aglSetCurrentContext(nullptr));
    EXPECT_TRUE(host.IsCurrent());
  }
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  other.Destroy();
  EXPECT_TRUE(aglSetCurrentContext(context.context));
  context.Destroy();
  EXPECT_TRUE(host.IsCurrent());
}

TEST_F(ContextTest, TheHostMayTakeTheThreadFromAContext) {
  const HostContext host;
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  host.MakeCurrent();
  aglSwapBuffers(context.context);
  EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_CONTEXT});
  EXPECT_TRUE(aglSetCurrentContext(nullptr));
  EXPECT_EQ(port.frames, 0);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawAndExpect();
}

TEST_F(ContextTest, WithoutAServerTheHostsContextStaysCurrent) {
  const HostContext host;
  HalvenorPort window{};
  window.kind = kHalvenorPortX11Window;
  window.bounds = MakeRect(16, 16);
  window.x11DisplayName = "localhost:nowhere";
  window.x11Window = 1;
  const TestContext second(&window);
  EXPECT_FALSE(aglSetCurrentContext(second.context));
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_DISPLAY});
  EXPECT_EQ(log.Take().size(), 1U);
  EXPECT_TRUE(host.IsCurrent());
}

TEST_F(ContextTest, AContextOfAnotherThreadIsOutOfReach) {
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  std::thread([&] {
    const HostContext host;
    EXPECT_FALSE(aglSetCurrentContext(context.context));
    EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_CONTEXT});
    EXPECT_FALSE(aglDestroyContext(context.context));
    EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_CONTEXT});
    EXPECT_TRUE(host.IsCurrent());
  }).join();
  DrawQuarters(16, 16);
  aglSetCurrentContext(nullptr);
  // What was drawn on one thread is shown by another, and destroyed on a third.
  std::thread([&] {
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    aglSwapBuffers(context.context);
    aglSetCurrentContext(nullptr);
  }).join();
  EXPECT_EQ(QuartersFault(port.image, 0, 0, 16, 16), "");
  std::thread([&] { context.Destroy(); }).join();
}

TEST_F(ContextTest, MisfitsAreRefusedWithTheirError) {
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  const GLint unknown[] = {AGL_RGBA, 4711, AGL_NONE};
  const GLint rgba[] = {AGL_RGBA, AGL_NONE};
  const AGLPixelFormat format = aglChoosePixelFormat(nullptr, 0, rgba);
  const AGLContext agl = context.context;
  const GLint values[4] = {0, 0, 10, 10};
  const GLint negative[4] = {0, 0, 10, -1};
  HalvenorPort window{};
  window.kind = kHalvenorPortX11Window;
  HalvenorPort otherSystem = window;
  otherSystem.x11Window = 1;
  // Braces: from left to right, and each call before its error is read.
  ExpectRefusals({
      {"attribute", aglChoosePixelFormat(nullptr, 0, unknown) == nullptr, aglGetError(),
       AGL_BAD_ATTRIBUTE},
      {"share", aglCreateContext(format, agl) == nullptr, aglGetError(), AGL_BAD_CONTEXT},
      {"set null", !aglSetInteger(nullptr, AGL_BUFFER_RECT, values), aglGetError(),
       AGL_BAD_CONTEXT},
      {"set unknown", !aglSetInteger(agl, 4711, values), aglGetError(), AGL_BAD_ENUM},
      {"enable unknown", !aglEnable(agl, 4711), aglGetError(), AGL_BAD_ENUM},
      {"set nothing", !aglSetInteger(agl, AGL_BUFFER_RECT, nullptr), aglGetError(), AGL_BAD_VALUE},
      {"set a negative size", !aglSetInteger(agl, AGL_BUFFER_RECT, negative), aglGetError(),
       AGL_BAD_VALUE},
      {"no window", !aglSetDrawable(agl, &window), aglGetError(), AGL_BAD_DRAWABLE},
      {"another system", !aglSetDrawable(agl, &otherSystem), aglGetError(), AGL_BAD_DRAWABLE},
  });
  aglDestroyPixelFormat(format);
}

TEST_F(ContextTest, OpeningAndClosingLeavesNothing) {
  const auto openAndClose = [](int times) {
    for (int i = 0; i < times; ++i) {
      OffscreenPort wide(320, 240);
      const TestContext opened(&wide.port);
      ASSERT_TRUE(aglSetCurrentContext(opened.context));
      std::int16_t family = 0;
      GetFNum(reinterpret_cast<const unsigned char*>("\011Helvetica"), &family);
      EXPECT_TRUE(aglUseFont(opened.context, family, 0, 9, 0, 256, 1));
      DrawQuarters(320, 240);
      aglSwapBuffers(opened.context);
    }
  };
  openAndClose(50);
  const auto files = OpenFiles();
  const long memory = MemoryInUse();
  openAndClose(200);
  EXPECT_EQ(OpenFiles(), files);
  // One leaked frame buffer of 320x240 for each time would be 117 MiB.
  EXPECT_LT(MemoryInUse() - memory, 16 * 1024);
}

} // namespace
} // namespace halvenor
