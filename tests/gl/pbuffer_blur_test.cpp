#include "gl/pbuffer_blur.h"
#include "tests/gl/context_test.h"

namespace halvenor {
namespace {

using stand_ins::CallTexts;
using stand_ins::Listed;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr char kNoPrograms[] = " Halvenor : ARB Shaders not supported!";

class PBufferBlurTest : public ContextTest {
protected:
  void TearDown() override {
    blur_.Destroy();
    ContextTest::TearDown();
  }
  // One frame, so that texture 1 is the finished image.
  void CreateAndDraw() {
    blur_.Create(context_);
    blur_.StartDrawing();
    blur_.EndDrawing();
    log_.Take();
    stand_ins::ClearCalls();
  }
  // The calls that show the glow, with the window as the target again.
  std::vector<std::string> DrawingCalls() {
    aglSetDrawable(context_, nullptr);
    aglSetDrawable(context_, &port_);
    stand_ins::ClearCalls();
    blur_.DrawBlur();
    return CallTexts();
  }
  static std::string Quad(const std::string& left, const std::string& bottom,
                          const std::string& right, const std::string& top) {
    const auto corner = [](const char* texel, const std::string& x, const std::string& y) {
      return std::string("glTexCoord2f(") + texel + "); glVertex3f(" + x + ", " + y + ", 0); ";
    };
    return "glBegin(GL_TRIANGLE_STRIP); " + corner("0, 0", left, bottom) +
           corner("1, 0", right, bottom) + corner("0, 1", left, top) + corner("1, 1", right, top) +
           "glEnd(); ";
  }
  static std::string Whole() { return Quad("-1", "-1", "1", "1"); }
  static std::string Copies(const std::string& below, const std::string& above) {
    const std::string low = "-1" + below, high = "1" + below;
    const std::string inner = "0.99" + above, outer = "-0.99" + above;
    return Whole() + Quad(low, low, inner, inner) + Quad(outer, low, high, inner) +
           Quad(low, outer, inner, high) + Quad(outer, outer, high, high);
  }

  PBufferBlur blur_;
};

TEST_F(PBufferBlurTest, ProgramsBlurInTwoDirectionsTwice) {
  CreateAndDraw();
  blur_.GenerateBlur();
  std::string expected =
      "glEnable(GL_TEXTURE_2D); glEnable(GL_VERTEX_PROGRAM_ARB); "
      "glEnable(GL_FRAGMENT_PROGRAM_ARB); glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 3); "
      "glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 4); glViewport(0, 0, 512, 512); "
      "glClearColor(0, 0, 0, 1); glColor4f(1, 1, 1, 1); aglGetError(); glDisable(GL_BLEND); ";
  const struct {
    std::string target, source, offset;
  } passes[] = {{"4", "1", "0.006, 0"},
                {"3", "4", "0, 0.006"},
                {"4", "3", "0.006, 0"},
                {"3", "4", "0, 0.006"}};
  for (const auto& [target, source, offset] : passes) {
    expected += "aglGetVirtualScreen(context 1); aglSetPBuffer(context 1, pbuffer " + target +
                ", 0, 0, 0); glClear(GL_COLOR_BUFFER_BIT); glBindTexture(GL_TEXTURE_2D, " + source +
                "); glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 0, " + offset +
                ", 0, 0); " + Whole() + "aglSwapBuffers(context 1); ";
  }
  EXPECT_EQ(CallTexts(), Listed(expected + "glDisable(GL_VERTEX_PROGRAM_ARB); "
                                           "glDisable(GL_FRAGMENT_PROGRAM_ARB); "
                                           "glEnable(GL_BLEND)"));

  EXPECT_EQ(DrawingCalls(),
            Listed("glEnable(GL_TEXTURE_2D); glEnable(GL_BLEND); glEnable(GL_VERTEX_PROGRAM_ARB); "
                   "glEnable(GL_FRAGMENT_PROGRAM_ARB); glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 1); "
                   "glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 2); glColor4f(0.7, 0.7, 0.7, 0.6); "
                   "glBindTexture(GL_TEXTURE_2D, 3); "
                   "glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR); " +
                   Whole() + "glBlendFunc(GL_SRC_ALPHA, GL_ONE); glColor4f(1, 1, 1, 1); " +
                   Whole() +
                   "glDisable(GL_FRAGMENT_PROGRAM_ARB); "
                   "glDisable(GL_VERTEX_PROGRAM_ARB); glEnable(GL_BLEND)"));
}

TEST_F(PBufferBlurTest, WithoutProgramsItAddsShiftedCopies) {
  stand_ins::SetExtensions("");
  CreateAndDraw();
  blur_.GenerateBlur();
  EXPECT_EQ(CallTexts(),
            Listed("glEnable(GL_TEXTURE_2D); glViewport(0, 0, 512, 512); "
                   "glClearColor(0, 0, 0, 1); glColor4f(1, 1, 1, 1); aglGetError(); "
                   "glEnable(GL_BLEND); glBlendFunc(GL_SRC_ALPHA, GL_ONE); "
                   "aglGetVirtualScreen(context 1); aglSetPBuffer(context 1, pbuffer 3, 0, 0, 0); "
                   "glClear(GL_COLOR_BUFFER_BIT); glBindTexture(GL_TEXTURE_2D, 1); "
                   "glColor4f(1, 1, 1, 0.5); " +
                   Copies(".008", "2") + "aglSwapBuffers(context 1); glEnable(GL_BLEND)"));
  EXPECT_EQ(DrawingCalls(),
            Listed("glEnable(GL_TEXTURE_2D); glEnable(GL_BLEND); glColor4f(0.5, 0.5, 0.5, 0.2); "
                   "glBindTexture(GL_TEXTURE_2D, 3); glBlendFunc(GL_SRC_ALPHA, GL_ONE); " +
                   Copies(".01", "") + "glEnable(GL_BLEND)"));
}

TEST_F(PBufferBlurTest, TheImplementationFollowsTheContext) {
  for (const bool programs : {false, true, false, true}) {
    stand_ins::SetExtensions(programs ? "GL_ARB_fragment_program GL_ARB_vertex_program" : "");
    blur_.Create(context_); // over the one before
    EXPECT_EQ(stand_ins::LivePrograms(), programs ? 4 : 0);
    EXPECT_EQ(stand_ins::LivePBuffers(), 4);
    EXPECT_EQ(stand_ins::LiveTextures(), 4);
    EXPECT_EQ(log_.Take(), std::vector<std::string>(programs ? 0 : 1, kNoPrograms));
  }
}

TEST_F(PBufferBlurTest, WithoutItsBuffersItDrawsNoGlow) {
  for (const std::uint64_t nth : {1U, 2U, 3U, 4U}) {
    const bool created = nth > 2; // what the lines are drawn into
    stand_ins::Fail("aglCreatePBuffer", AGL_NO_BUFFER, nth, 1);
    blur_.Create(context_);
    EXPECT_THAT(log_.Take(), ElementsAre(StartsWith(created ? "pBufferBlur problems : "
                                                            : "pBuffers not supported : ")));
    EXPECT_EQ(stand_ins::LivePBuffers(), created ? 2 : 0);
    EXPECT_EQ(blur_.StartDrawing(), created);
    blur_.EndDrawing();
    stand_ins::ClearCalls();
    blur_.GenerateBlur();
    blur_.DrawBlur();
    EXPECT_THAT(CallTexts(), IsEmpty());
    blur_.Destroy();
    EXPECT_EQ(LiveObjects(), 0);
  }
}

TEST_F(PBufferBlurTest, PendingErrorsAreReportedAndTheWorkGoesOn) {
  const auto leaveError = [] { aglSetPBuffer(nullptr, nullptr, 0, 0, 0); };
  CreateAndDraw();
  leaveError();
  blur_.GenerateBlur();
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("pBuffer start drawing problems : ")));
  EXPECT_EQ(stand_ins::CallsOf("aglSwapBuffers").size(), 4U);
  leaveError();
  blur_.Destroy();
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("PBuffer destruction problems : ")));
}

} // namespace
} // namespace halvenor
