#include "platform/agl.h"
#include "tests/stand_ins/agl_behaviour.h"
#include "tests/stand_ins/offscreen_port.h"
#include "tests/stand_ins/stand_in_test.h"

#include <atomic>
#include <thread>

namespace halvenor::stand_ins {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AglStandInTest : public StandInTest {
protected:
  AGLContext MakeContext() {
    format_ = aglChoosePixelFormat(nullptr, 0, agl_behaviour::kAttributes);
    return aglCreateContext(format_, nullptr);
  }

  // What misused the stand-ins on purpose is taken note of and forgotten.
  static std::vector<std::string> TakeMisuses() {
    std::vector<std::string> misuses = Misuses();
    Reset();
    return misuses;
  }

  AGLPixelFormat format_ = nullptr;
};

TEST_F(AglStandInTest, ShowsCallsInOneSequenceWithThoseOfOpenGL) {
  HalvenorPort port = OffscreenPort(30, 40);
  const AGLContext context = MakeContext();
  const GLint rect[] = {1, 2, 30, 40};
  aglSetDrawable(context, &port);
  aglSetCurrentContext(context);
  aglSetInteger(context, AGL_BUFFER_RECT, rect);
  aglEnable(context, AGL_BUFFER_RECT);
  glLoadIdentity();
  aglSwapBuffers(context);
  aglSetDrawable(context, nullptr);
  EXPECT_THAT(CallTexts(),
              ElementsAre("aglChoosePixelFormat(4, 5, 8, 8, 11, 8, 12, 24, 74, 72)",
                          "aglCreateContext(format 1, null)", "aglSetDrawable(context 1, port 1)",
                          "aglSetCurrentContext(context 1)",
                          "aglSetInteger(context 1, AGL_BUFFER_RECT, 1, 2, 30, 40)",
                          "aglEnable(context 1, AGL_BUFFER_RECT)", "glLoadIdentity()",
                          "aglSwapBuffers(context 1)", "aglSetDrawable(context 1, null)"));
  EXPECT_THAT(CallsOf("aglSetInteger")[0].arguments, ElementsAre(1, 202, 1, 2, 30, 40));
}

TEST_F(AglStandInTest, CountsWhatIsAlive) {
  const AGLContext context = MakeContext();
  EXPECT_EQ(LiveContexts(), 1);
  EXPECT_EQ(LivePixelFormats(), 1);
  aglSetCurrentContext(context);
  aglDestroyContext(context);
  EXPECT_EQ(CurrentContextNumber(), 0);
  aglDestroyPixelFormat(format_);
  aglDestroyPixelFormat(nullptr);
  EXPECT_EQ(LiveContexts(), 0);
  EXPECT_EQ(LivePixelFormats(), 0);
}

TEST_F(AglStandInTest, FaultsHitTheCallsTheyAreMeantFor) {
  Fail("aglCreateContext", AGL_NO_OPENGL, 2, 1);
  AGLContext context = MakeContext();
  EXPECT_NE(context, nullptr);
  EXPECT_EQ(aglCreateContext(format_, nullptr), nullptr);
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_OPENGL});
  EXPECT_NE(aglCreateContext(format_, nullptr), nullptr);
  EXPECT_EQ(LiveContexts(), 2);

  Fail("aglSetCurrentContext", AGL_NO_OPENGL, 2);
  EXPECT_TRUE(aglSetCurrentContext(nullptr));
  EXPECT_FALSE(aglSetCurrentContext(context));
  EXPECT_EQ(CurrentContextNumber(), 0);
  Fail("aglSetCurrentContext", 0, 1, 0);
  EXPECT_TRUE(aglSetCurrentContext(context));
  EXPECT_EQ(CurrentContextNumber(), 1);
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_OPENGL}) << "stays through a later success";

  std::int16_t family = 1;
  Fail("GetFNum", 1);
  GetFNum(nullptr, &family);
  EXPECT_EQ(family, 0);
}

TEST_F(AglStandInTest, TellsUsesThatTheRealLayerNeedNotSurvive) {
  {
    const AGLContext context = MakeContext();
    aglSetCurrentContext(context);
    std::thread([context] {
      EXPECT_FALSE(aglSetCurrentContext(context));
      EXPECT_FALSE(aglDestroyContext(context));
    }).join();
    EXPECT_THAT(TakeMisuses(), ElementsAre(HasSubstr("current on another thread"),
                                           HasSubstr("current on another thread")));
  }
  {
    const AGLContext context = MakeContext();
    std::thread([context] { aglSetCurrentContext(context); }).join();
    EXPECT_THAT(TakeMisuses(), ElementsAre(HasSubstr("a thread ended with context 1 current")));
  }
  {
    const AGLContext context = MakeContext();
    aglDestroyContext(context);
    EXPECT_FALSE(aglUpdateContext(context));
    aglDestroyPixelFormat(format_);
    aglDestroyPixelFormat(format_);
    EXPECT_EQ(aglCreateContext(format_, nullptr), nullptr);
    EXPECT_THAT(TakeMisuses(),
                ElementsAre(HasSubstr("aglUpdateContext: context 1 was destroyed"),
                            HasSubstr("aglDestroyPixelFormat: format 1 was destroyed"),
                            HasSubstr("aglCreateContext: format 1 was destroyed")));
  }
  EXPECT_EQ(LiveContexts(), 0);
  EXPECT_EQ(CurrentContextNumber(), 0);
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_ERROR});
}

TEST_F(AglStandInTest, AHookHoldsACallUp) {
  const AGLContext context = MakeContext();
  std::atomic<bool> swapping = false;
  std::atomic<bool> go_on = false;
  OnCall("aglSwapBuffers", [&] {
    swapping = true;
    while (!go_on)
      std::this_thread::yield();
  });
  std::thread drawer([&] {
    aglSetCurrentContext(context);
    aglSwapBuffers(context);
    aglSetCurrentContext(nullptr);
  });
  while (!swapping)
    std::this_thread::yield();
  EXPECT_EQ(CallCount("aglSwapBuffers"), 0U);
  OnCall("aglSwapBuffers", {});
  go_on = true;
  drawer.join();
  EXPECT_EQ(CallCount("aglSwapBuffers"), 1U);
}

} // namespace
} // namespace halvenor::stand_ins
