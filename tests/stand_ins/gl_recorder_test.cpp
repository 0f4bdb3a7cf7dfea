#include "platform/agl.h"
#include "tests/stand_ins/allocation_counter.h"
#include "tests/stand_ins/offscreen_port.h"
#include "tests/stand_ins/stand_in_test.h"

#include <array>
#include <thread>

namespace halvenor::stand_ins {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class GlRecorderTest : public StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    const GLint attributes[] = {AGL_RGBA, AGL_NONE};
    context_ = aglCreateContext(aglChoosePixelFormat(nullptr, 0, attributes), nullptr);
    aglSetCurrentContext(context_);
    ClearCalls();
  }

  AGLContext context_ = nullptr;
};

TEST_F(GlRecorderTest, ShowsArgumentsReadably) {
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | 1U);
  glColor4f(1, 0.1F, -0.0F, -2.5F);
  glBegin(GL_LINE_STRIP);
  glVertex3f(1e-9F, 16777216.0F, 0);
  glEnd();
  glViewport(-1, 0, 1280, 720);
  glDisable(0x1234);
  glInterleavedArrays(GL_V2F, 8, nullptr);
  EXPECT_THAT(CallTexts(),
              ElementsAre("glEnable(GL_BLEND)", "glBlendFunc(GL_SRC_ALPHA, GL_ONE)",
                          "glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | 0x0001)",
                          "glColor4f(1, 0.1, 0, -2.5)", "glBegin(GL_LINE_STRIP)",
                          "glVertex3f(1e-09, 1.67772e+07, 0)", "glEnd()",
                          "glViewport(-1, 0, 1280, 720)", "glDisable(0x1234)",
                          "glInterleavedArrays(GL_V2F, 8, null)"));
  const std::vector<Call> colours = CallsOf("glColor4f");
  ASSERT_EQ(colours.size(), 1U);
  EXPECT_THAT(colours[0].arguments, ElementsAre(1.0, double{0.1F}, 0.0, -2.5)) << "exact values";
  ClearCalls();
  EXPECT_THAT(Calls(), IsEmpty());
  EXPECT_EQ(CallCount("glEnable"), 1U);
}

TEST_F(GlRecorderTest, CopiesTheVerticesAsTheyWereWhenDrawn) {
  std::array<float, 10> numbers = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  glInterleavedArrays(GL_V2F, 8, numbers.data());
  glDrawArrays(GL_LINE_STRIP, 1, 2);
  numbers.fill(-1);
  glDrawArrays(GL_LINE_STRIP, 0, 1);
  numbers = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  glInterleavedArrays(GL_V2F, 12, numbers.data());
  glDrawArrays(GL_LINES, 0, 2);
  const std::vector<Call> calls = CallsOf("glDrawArrays");
  ASSERT_EQ(calls.size(), 3U);
  EXPECT_EQ(calls[0].text, "glDrawArrays(GL_LINE_STRIP, 1, 2)");
  EXPECT_THAT(calls[0].vertices, ElementsAre(Vertex{2, 3}, Vertex{4, 5}));
  EXPECT_THAT(calls[1].vertices, ElementsAre(Vertex{-1, -1}));
  EXPECT_THAT(calls[2].vertices, ElementsAre(Vertex{0, 1}, Vertex{3, 4}));
}

TEST_F(GlRecorderTest, GivesNamesAndErrors) {
  const GLuint first = glGenLists(256);
  EXPECT_EQ(glGenLists(1), first + 256);
  EXPECT_EQ(LiveDisplayLists(), 257);
  glDeleteLists(first, 256);
  EXPECT_EQ(LiveDisplayLists(), 1);

  InjectGlError(GL_INVALID_ENUM);
  InjectGlError(GL_OUT_OF_MEMORY);
  EXPECT_EQ(glGetError(), GLenum{GL_INVALID_ENUM});
  EXPECT_EQ(glGetError(), GLenum{GL_OUT_OF_MEMORY});
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});

  Fail("glGenLists", GL_OUT_OF_MEMORY, 1, 1);
  EXPECT_EQ(glGenLists(256), 0U);
  EXPECT_EQ(glGetError(), GLenum{GL_OUT_OF_MEMORY});
  EXPECT_EQ(LiveDisplayLists(), 1);
}

TEST_F(GlRecorderTest, TellsCallsThatOpenGLWouldNotTake) {
  glBegin(GL_LINES);
  glColor4f(1, 1, 1, 1);
  glCallList(1);
  glVertex2f(0, 0);
  glLoadIdentity();
  glEnd();
  glEnd();
  glDrawArrays(GL_LINES, 0, 2);
  std::thread([] { glLoadIdentity(); }).join();
  aglSetCurrentContext(nullptr);
  glEnable(GL_BLEND);
  EXPECT_THAT(Misuses(), ElementsAre("glLoadIdentity between glBegin and glEnd",
                                     "glEnd without glBegin", "glDrawArrays without a GL_V2F array",
                                     "glLoadIdentity without a current context",
                                     "glEnable without a current context"));
  Reset();
}

TEST_F(GlRecorderTest, SilenceRecordsAndAllocatesNothingButCountsOn) {
  const std::array<float, 4> numbers = {0, 1, 2, 3};
  HalvenorPort port = OffscreenPort(30, 40);
  SetSilent(true);
  const std::uint64_t before = AllocationsOfThisThread();
  for (int i = 0; i < 10; ++i) {
    aglSetDrawable(context_, &port);
    aglSetCurrentContext(context_);
    glInterleavedArrays(GL_V2F, 8, numbers.data());
    glDrawArrays(GL_LINES, 0, 2);
    aglSwapBuffers(context_);
    (void)aglGetError();
    (void)glGetError();
  }
  EXPECT_EQ(AllocationsOfThisThread(), before);
  EXPECT_THAT(Calls(), IsEmpty());
  EXPECT_EQ(CallCount("glDrawArrays"), 10U);
  Fail("glGenLists", GL_OUT_OF_MEMORY);
  EXPECT_EQ(glGenLists(1), 0U);
  SetSilent(false);
  glLoadIdentity();
  EXPECT_THAT(CallTexts(), ElementsAre("glLoadIdentity()"));
}

} // namespace
} // namespace halvenor::stand_ins
