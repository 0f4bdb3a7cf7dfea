// Drawing into offscreen ports on the real EGL.
#include "tests/platform/gl_fixture.h"

#include <GL/glext.h>

namespace halvenor {
namespace {

class OffscreenTest : public GlTest {
protected:
  void SetUp() override { ASSERT_TRUE(aglSetCurrentContext(context.context)); }
  void Place(int x, int y, int width, int height) const {
    context.SetRect(x, y, width, height);
    ASSERT_TRUE(aglUpdateContext(context.context));
  }
  /// Draws the quarters and expects them with their top-left corner there, and black around.
  void DrawAndExpect(int left, int top, int width, int height) {
    DrawQuarters(width, height);
    aglSwapBuffers(context.context);
    ASSERT_EQ(port.image.width, port.port.bounds.right);
    ASSERT_EQ(port.image.height, port.port.bounds.bottom);
    EXPECT_EQ(QuartersFault(port.image, left, top, width, height), "");
  }
  static GLint Integer(GLenum name) {
    GLint values[4] = {};
    glGetIntegerv(name, values);
    return values[0];
  }

  OffscreenPort port{33, 18};
  TestContext context{&port.port};
};

TEST_F(OffscreenTest, FramesArriveUprightAndWholeAtEverySize) {
  DrawAndExpect(0, 0, 33, 18);
  EXPECT_EQ(port.frames, 1);
  for (const auto& [width, height] : {std::pair{64, 48}, {30, 20}, {100, 7}, {64, 48}}) {
    port.port.bounds = MakeRect(width, height);
    Place(0, 0, width, height);
    DrawAndExpect(0, 0, width, height);
  }
}

// Each placement has to blacken what the last one left.
TEST_F(OffscreenTest, TheBufferRectangleIsHonoredAndCutAtTheEdge) {
  for (const auto& [x, y] : {std::pair{10, 5}, {0, 0}, {17, 6}, {3, 1}}) {
    Place(x, y, 16, 12);
    DrawAndExpect(x, 18 - y - 12, 16, 12);
  }
  Place(-8, 10, 16, 16);
  DrawQuarters(16, 16);
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.image.At(0, 0), kWhite);
  EXPECT_EQ(port.image.At(7, 7), kWhite);
  EXPECT_EQ(port.image.At(8, 7), kBlack);
  EXPECT_EQ(port.image.At(7, 8), kBlack);
  for (const auto& [x, y] : {std::pair{-16, 0}, {33, 0}, {0, 20}, {INT32_MAX, INT32_MIN}}) {
    Place(x, y, 16, 16);
    aglSwapBuffers(context.context);
    EXPECT_EQ(port.image.At(0, 0), kBlack);
  }
  Place(2, 2, 0, 5); // empty
  DrawQuarters(8, 8);
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.image.At(3, 13), kBlack);
  const int frames = port.frames;
  port.port.bounds = MakeRect(0, 0);
  EXPECT_TRUE(aglUpdateContext(context.context));
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.frames, frames);
}

// The host's memory is where frames lie, with the black around a part of the port.
TEST_F(OffscreenTest, FramesGoStraightToTheHostsMemory) {
  HostMemory memory(port);
  Place(10, 5, 16, 12);
  for (const bool turns : {false, true}) {
    if (turns) memory.TurnOver(port);
    DrawQuarters(16, 12);
    aglSwapBuffers(context.context);
    EXPECT_EQ(port.topRow, port.port.destination);
    EXPECT_EQ(QuartersFault(port.image, 10, 1, 16, 12), "");
    EXPECT_EQ(memory.At(10, 1), kRed);
    EXPECT_EQ(memory.At(9, 1), kBlack);
    EXPECT_EQ(memory.Trespasses(), 0);
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
  port.port.bounds = MakeRect(32, 24);
  for (const auto& window : windows) {
    SCOPED_TRACE(testing::Message() << window.width << " x " << window.height);
    port.port.outputWidth = window.width;
    port.port.outputHeight = window.height;
    Place(0, 0, 32, 24);
    DrawQuarters(32, 24);
    aglSwapBuffers(context.context);
    ASSERT_EQ(port.image.width, window.width);
    ASSERT_EQ(port.image.height, window.height);
    EXPECT_EQ(QuartersFault(port.image, window.x, window.y, window.shownWidth, window.shownHeight),
              "");
  }
}

TEST_F(OffscreenTest, ReattachingMakesNothingAndDetachedDrawingIsLost) {
  DrawQuarters(33, 18);
  const GLint buffer = Integer(GL_FRAMEBUFFER_BINDING);
  GLuint names[2] = {};
  glGenFramebuffers(1, names);
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(aglSetDrawable(context.context, nullptr));
    FillPixels(0, 0, 33, 18, kBlack);
    ASSERT_TRUE(aglSetDrawable(context.context, &port.port));
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    ASSERT_EQ(Integer(GL_FRAMEBUFFER_BINDING), buffer);
  }
  glGenFramebuffers(1, names + 1);
  EXPECT_EQ(names[1], names[0] + 1) << "frame buffers were made in between";
  aglSwapBuffers(context.context);
  EXPECT_EQ(QuartersFault(port.image, 0, 0, 33, 18), "");
  glDeleteFramebuffers(2, names);
}

TEST_F(OffscreenTest, TheBufferHasTheChannelsAskedFor) {
  EXPECT_EQ(Integer(GL_DEPTH_BITS), 24);
  EXPECT_EQ(Integer(GL_ALPHA_BITS), 8);
  EXPECT_EQ(Integer(GL_RED_BITS), 8);
}

// The plug-in's own state for reading and drawing neither disturbs a swap nor is disturbed by it.
TEST_F(OffscreenTest, ASwapKeepsTheGlState) {
  const GLint buffer = Integer(GL_FRAMEBUFFER_BINDING);
  DrawQuarters(33, 18);
  glScissor(1, 1, 2, 2);
  glViewport(3, 2, 3, 4);
  const std::array<std::pair<GLenum, GLint>, 3> pack = {
      {{GL_PACK_ROW_LENGTH, 3}, {GL_PACK_SKIP_ROWS, 5}, {GL_PACK_ALIGNMENT, 1}}};
  for (const auto& [name, value] : pack)
    glPixelStorei(name, value);
  aglSwapBuffers(context.context);
  EXPECT_EQ(QuartersFault(port.image, 0, 0, 33, 18), "");
  for (const auto& [name, value] : pack)
    EXPECT_EQ(Integer(name), value);
  EXPECT_EQ(Integer(GL_VIEWPORT), 3);
  EXPECT_TRUE(glIsEnabled(GL_SCISSOR_TEST));
  EXPECT_EQ(Integer(GL_FRAMEBUFFER_BINDING), buffer);
}

TEST_F(OffscreenTest, ABufferBeyondTheDriversLimitsFailsAndIsOvercome) {
  OffscreenPort wide(32767, 10);
  const TestContext second(&wide.port);
  EXPECT_FALSE(aglSetCurrentContext(second.context));
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_BUFFER});
  EXPECT_FALSE(aglUpdateContext(second.context));
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_BUFFER});
  // Drawing goes nowhere and is no error; the failure is not repeated with every frame.
  DrawQuarters(16, 16);
  EXPECT_TRUE(aglSetCurrentContext(second.context));
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});

  wide.port.bounds = MakeRect(16, 16);
  ASSERT_TRUE(aglUpdateContext(second.context));
  DrawQuarters(16, 16);
  aglSwapBuffers(second.context);
  EXPECT_EQ(QuartersFault(wide.image, 0, 0, 16, 16), "");
}

} // namespace
} // namespace halvenor
