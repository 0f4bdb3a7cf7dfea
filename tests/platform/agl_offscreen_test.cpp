// Drawing into offscreen ports on the real EGL.
#define GL_GLEXT_PROTOTYPES
#include "tests/platform/gl_fixture.h"

#include <GL/glext.h>

namespace halvenor {
namespace {

using OffscreenTest = GlTest;

GLint BoundFrameBuffer() {
  GLint name = 0;
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &name);
  return name;
}

TEST_F(OffscreenTest, FramesArriveUprightAndWhole) {
  OffscreenPort port(33, 18);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawQuarters(33, 18);
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.frames, 1);
  ASSERT_EQ(port.image.width, 33);
  ASSERT_EQ(port.image.height, 18);
  EXPECT_EQ(QuartersFault(port.image, 0, 0, 33, 18), "");
}

// The same port is used for all, so that each placement has to blacken what the last one left.
TEST_F(OffscreenTest, TheBufferRectangleIsHonoured) {
  OffscreenPort port(40, 30);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  for (const auto& [x, y] : {std::pair{10, 5}, {0, 0}, {24, 18}, {3, 11}}) {
    context.SetRect(x, y, 16, 12);
    ASSERT_TRUE(aglUpdateContext(context.context));
    DrawQuarters(16, 12);
    aglSwapBuffers(context.context);
    ASSERT_EQ(port.image.width, 40);
    EXPECT_EQ(QuartersFault(port.image, x, 30 - y - 12, 16, 12), "");
  }
}

TEST_F(OffscreenTest, ARectangleOverTheEdgeIsCut) {
  OffscreenPort port(20, 20);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  context.SetRect(-8, 12, 16, 16);
  ASSERT_TRUE(aglUpdateContext(context.context));
  DrawQuarters(16, 16);
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.image.At(0, 0), kWhite);
  EXPECT_EQ(port.image.At(7, 7), kWhite);
  EXPECT_EQ(port.image.At(8, 7), kBlack);
  EXPECT_EQ(port.image.At(7, 8), kBlack);

  for (const auto& [x, y] : {std::pair{-16, 0}, {20, 0}, {0, 20}, {INT32_MAX, INT32_MIN}}) {
    context.SetRect(x, y, 16, 16);
    ASSERT_TRUE(aglUpdateContext(context.context));
    aglSwapBuffers(context.context);
    EXPECT_EQ(port.image.At(0, 0), kBlack);
  }
}

// A port that is smaller than its window fills it, in its own proportions, in the middle of black;
// and no longer once the sizes agree.
TEST_F(OffscreenTest, PicturesAreScaledToTheirWindow) {
  const struct {
    int width, height; // of the window; the port has 32 x 24
    int x, y, shownWidth, shownHeight;
  } windows[] = {{64, 48, 0, 0, 64, 48},
                 {100, 48, 18, 0, 64, 48},
                 {16, 40, 0, 14, 16, 12},
                 {32, 24, 0, 0, 32, 24},
                 {33, 24, 0, 0, 32, 24}};
  OffscreenPort port(32, 24);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  context.SetRect(0, 0, 32, 24);
  for (const auto& window : windows) {
    SCOPED_TRACE(testing::Message() << window.width << " x " << window.height);
    port.port.outputWidth = window.width;
    port.port.outputHeight = window.height;
    ASSERT_TRUE(aglUpdateContext(context.context));
    DrawQuarters(32, 24);
    aglSwapBuffers(context.context);
    ASSERT_EQ(port.image.width, window.width);
    ASSERT_EQ(port.image.height, window.height);
    EXPECT_EQ(QuartersFault(port.image, window.x, window.y, window.shownWidth, window.shownHeight),
              "");
  }
}

TEST_F(OffscreenTest, AResizeIsFollowed) {
  OffscreenPort port(64, 48);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  for (const auto& [width, height] : {std::pair{30, 20}, {100, 7}, {64, 48}}) {
    port.port.bounds = MakeRect(width, height);
    context.SetRect(0, 0, width, height);
    ASSERT_TRUE(aglUpdateContext(context.context));
    DrawQuarters(width, height);
    aglSwapBuffers(context.context);
    ASSERT_EQ(port.image.width, width);
    ASSERT_EQ(port.image.height, height);
    EXPECT_EQ(QuartersFault(port.image, 0, 0, width, height), "");
  }
}

TEST_F(OffscreenTest, EmptyAreasAreSurvived) {
  OffscreenPort port(8, 8);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  context.SetRect(2, 2, 0, 5);
  EXPECT_TRUE(aglUpdateContext(context.context));
  DrawQuarters(8, 8);
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.image.At(3, 3), kBlack);
  port.port.bounds = MakeRect(0, 0);
  EXPECT_TRUE(aglUpdateContext(context.context));
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.frames, 1);
}

TEST_F(OffscreenTest, ReattachingMakesNothingAndDetachedDrawingIsLost) {
  OffscreenPort port(16, 16);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawQuarters(16, 16);
  const GLint buffer = BoundFrameBuffer();
  GLuint before = 0;
  glGenFramebuffers(1, &before);
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(aglSetDrawable(context.context, nullptr));
    FillPixels(0, 0, 16, 16, kBlack);
    ASSERT_TRUE(aglSetDrawable(context.context, &port.port));
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    ASSERT_EQ(BoundFrameBuffer(), buffer);
  }
  GLuint after = 0;
  glGenFramebuffers(1, &after);
  EXPECT_EQ(after, before + 1) << "frame buffers were made in between";
  aglSwapBuffers(context.context);
  EXPECT_EQ(QuartersFault(port.image, 0, 0, 16, 16), "");
  glDeleteFramebuffers(1, &before);
  glDeleteFramebuffers(1, &after);
}

TEST_F(OffscreenTest, TheBufferHasTheChannelsAskedFor) {
  OffscreenPort port(4, 4);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  GLint bits = 0;
  glGetIntegerv(GL_DEPTH_BITS, &bits);
  EXPECT_EQ(bits, 24);
  glGetIntegerv(GL_ALPHA_BITS, &bits);
  EXPECT_EQ(bits, 8);
  glGetIntegerv(GL_RED_BITS, &bits);
  EXPECT_EQ(bits, 8);
}

// A host that only wants the time a frame takes.
TEST_F(OffscreenTest, WithoutACallbackFramesAreFinished) {
  OffscreenPort port(16, 16);
  port.port.frameFinished = nullptr;
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawQuarters(16, 16);
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.frames, 0);
}

// The plug-in's own state for reading and drawing neither disturbs a swap nor is disturbed by it.
TEST_F(OffscreenTest, ASwapKeepsTheGlState) {
  OffscreenPort port(16, 16);
  const TestContext context(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  DrawQuarters(16, 16);
  const GLint buffer = BoundFrameBuffer();
  glEnable(GL_SCISSOR_TEST);
  glScissor(1, 1, 2, 2);
  glViewport(1, 2, 3, 4);
  const std::array<std::pair<GLenum, GLint>, 3> pack = {
      {{GL_PACK_ROW_LENGTH, 3}, {GL_PACK_SKIP_ROWS, 5}, {GL_PACK_ALIGNMENT, 1}}};
  for (const auto& [name, value] : pack)
    glPixelStorei(name, value);
  aglSwapBuffers(context.context);
  EXPECT_EQ(QuartersFault(port.image, 0, 0, 16, 16), "");
  GLint now[4] = {};
  for (const auto& [name, value] : pack) {
    glGetIntegerv(name, now);
    EXPECT_EQ(now[0], value);
  }
  glGetIntegerv(GL_VIEWPORT, now);
  EXPECT_EQ(now[2], 3);
  EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
  EXPECT_EQ(BoundFrameBuffer(), buffer);
}

TEST_F(OffscreenTest, ABufferBeyondTheDriversLimitsFailsAndIsOvercome) {
  OffscreenPort port(32767, 10);
  const TestContext context(&port.port);
  EXPECT_FALSE(aglSetCurrentContext(context.context));
  EXPECT_EQ(aglGetError(), static_cast<GLenum>(AGL_NO_BUFFER));
  EXPECT_FALSE(aglUpdateContext(context.context));
  EXPECT_EQ(aglGetError(), static_cast<GLenum>(AGL_NO_BUFFER));
  // Drawing goes nowhere and is no error; the failure is not repeated with every frame.
  DrawQuarters(16, 16);
  EXPECT_TRUE(aglSetCurrentContext(context.context));
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

  port.port.bounds = MakeRect(16, 16);
  ASSERT_TRUE(aglUpdateContext(context.context));
  DrawQuarters(16, 16);
  aglSwapBuffers(context.context);
  EXPECT_EQ(QuartersFault(port.image, 0, 0, 16, 16), "");
}

} // namespace
} // namespace halvenor
