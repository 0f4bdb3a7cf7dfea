#include "gl/pbuffer_blur.h"
#include "tests/gl/context_test.h"

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using Calls = std::vector<std::string>;

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
  static Calls Quad(const std::string& left, const std::string& bottom, const std::string& right,
                    const std::string& top) {
    return {"glBegin(GL_TRIANGLE_STRIP)",
            "glTexCoord2f(0, 0)",
            "glVertex3f(" + left + ", " + bottom + ", 0)",
            "glTexCoord2f(1, 0)",
            "glVertex3f(" + right + ", " + bottom + ", 0)",
            "glTexCoord2f(0, 1)",
            "glVertex3f(" + left + ", " + top + ", 0)",
            "glTexCoord2f(1, 1)",
            "glVertex3f(" + right + ", " + top + ", 0)",
            "glEnd()"};
  }
  static Calls Whole() { return Quad("-1", "-1", "1", "1"); }
  static void Append(Calls& calls, const Calls& more) {
    calls.insert(calls.end(), more.begin(), more.end());
  }
  static Calls Copies(const std::string& below, const std::string& above) {
    Calls calls = Whole();
    Append(calls, Quad("-1" + below, "-1" + below, "0.99" + above, "0.99" + above));
    Append(calls, Quad("-0.99" + above, "-1" + below, "1" + below, "0.99" + above));
    Append(calls, Quad("-1" + below, "-0.99" + above, "0.99" + above, "1" + below));
    Append(calls, Quad("-0.99" + above, "-0.99" + above, "1" + below, "1" + below));
    return calls;
  }

  PBufferBlur blur_;
};

TEST_F(PBufferBlurTest, ProgramsBlurInTwoDirectionsTwice) {
  CreateAndDraw();
  blur_.GenerateBlur();
  Calls expected = {"glEnable(GL_TEXTURE_2D)",
                    "glEnable(GL_VERTEX_PROGRAM_ARB)",
                    "glEnable(GL_FRAGMENT_PROGRAM_ARB)",
                    "glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 3)",
                    "glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 4)",
                    "glViewport(0, 0, 512, 512)",
                    "glClearColor(0, 0, 0, 1)",
                    "glColor4f(1, 1, 1, 1)",
                    "aglGetError()",
                    "glDisable(GL_BLEND)"};
  const struct {
    const char *target, *source, *offset;
  } passes[] = {{"4", "1", "0.006, 0"},
                {"3", "4", "0, 0.006"},
                {"4", "3", "0.006, 0"},
                {"3", "4", "0, 0.006"}};
  for (const auto& [target, source, offset] : passes) {
    Append(expected, {"aglGetVirtualScreen(context 1)",
                      std::string("aglSetPBuffer(context 1, pbuffer ") + target + ", 0, 0, 0)",
                      "glClear(GL_COLOR_BUFFER_BIT)",
                      std::string("glBindTexture(GL_TEXTURE_2D, ") + source + ")",
                      std::string("glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 0, ") +
                          offset + ", 0, 0)"});
    Append(expected, Whole());
    Append(expected, {"aglSwapBuffers(context 1)"});
  }
  Append(expected, {"glDisable(GL_VERTEX_PROGRAM_ARB)", "glDisable(GL_FRAGMENT_PROGRAM_ARB)",
                    "glEnable(GL_BLEND)"});
  EXPECT_EQ(stand_ins::CallTexts(), expected);

  aglSetDrawable(context_, nullptr); // the window is the target again
  aglSetDrawable(context_, &port_);
  stand_ins::ClearCalls();
  blur_.DrawBlur();
  expected = {"glEnable(GL_TEXTURE_2D)",
              "glEnable(GL_BLEND)",
              "glEnable(GL_VERTEX_PROGRAM_ARB)",
              "glEnable(GL_FRAGMENT_PROGRAM_ARB)",
              "glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 1)",
              "glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 2)",
              "glColor4f(0.7, 0.7, 0.7, 0.6)",
              "glBindTexture(GL_TEXTURE_2D, 3)",
              "glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR)"};
  Append(expected, Whole());
  Append(expected, {"glBlendFunc(GL_SRC_ALPHA, GL_ONE)", "glColor4f(1, 1, 1, 1)"});
  Append(expected, Whole());
  Append(expected, {"glDisable(GL_FRAGMENT_PROGRAM_ARB)", "glDisable(GL_VERTEX_PROGRAM_ARB)",
                    "glEnable(GL_BLEND)"});
  EXPECT_EQ(stand_ins::CallTexts(), expected);
}

TEST_F(PBufferBlurTest, WithoutProgramsItAddsShiftedCopies) {
  stand_ins::SetExtensions("");
  CreateAndDraw();
  blur_.GenerateBlur();
  Calls expected = {"glEnable(GL_TEXTURE_2D)",
                    "glViewport(0, 0, 512, 512)",
                    "glClearColor(0, 0, 0, 1)",
                    "glColor4f(1, 1, 1, 1)",
                    "aglGetError()",
                    "glEnable(GL_BLEND)",
                    "glBlendFunc(GL_SRC_ALPHA, GL_ONE)",
                    "aglGetVirtualScreen(context 1)",
                    "aglSetPBuffer(context 1, pbuffer 3, 0, 0, 0)",
                    "glClear(GL_COLOR_BUFFER_BIT)",
                    "glBindTexture(GL_TEXTURE_2D, 1)",
                    "glColor4f(1, 1, 1, 0.5)"};
  Append(expected, Copies(".008", "2"));
  Append(expected, {"aglSwapBuffers(context 1)", "glEnable(GL_BLEND)"});
  EXPECT_EQ(stand_ins::CallTexts(), expected);

  aglSetDrawable(context_, nullptr);
  aglSetDrawable(context_, &port_);
  stand_ins::ClearCalls();
  blur_.DrawBlur();
  expected = {"glEnable(GL_TEXTURE_2D)", "glEnable(GL_BLEND)", "glColor4f(0.5, 0.5, 0.5, 0.2)",
              "glBindTexture(GL_TEXTURE_2D, 3)", "glBlendFunc(GL_SRC_ALPHA, GL_ONE)"};
  Append(expected, Copies(".01", ""));
  Append(expected, {"glEnable(GL_BLEND)"});
  EXPECT_EQ(stand_ins::CallTexts(), expected);
}

TEST_F(PBufferBlurTest, TheImplementationFollowsTheContext) {
  const struct {
    const char* extensions;
    std::int64_t programs;
  } openings[] = {{"", 0},
                  {"GL_ARB_fragment_program GL_ARB_vertex_program", 4},
                  {"", 0},
                  {"GL_ARB_vertex_program GL_ARB_fragment_program", 4}};
  for (const auto& [extensions, programs] : openings) {
    stand_ins::SetExtensions(extensions);
    blur_.Create(context_); // over the one before
    EXPECT_EQ(stand_ins::LivePrograms(), programs);
    EXPECT_EQ(stand_ins::LivePBuffers(), 4);
    EXPECT_EQ(stand_ins::LiveTextures(), 4);
    EXPECT_EQ(log_.Take(), programs == 0 ? Calls{kNoPrograms} : Calls{});
  }
}

TEST_F(PBufferBlurTest, WithoutItsBuffersItDrawsNoGlow) {
  const struct {
    std::uint64_t nth;
    const char* report;
    bool created;
  } cases[] = {{1, "pBuffers not supported : ", false},
               {2, "pBuffers not supported : ", false},
               {3, "pBufferBlur problems : ", true},
               {4, "pBufferBlur problems : ", true}};
  for (const auto& [nth, report, created] : cases) {
    stand_ins::Fail("aglCreatePBuffer", AGL_NO_BUFFER, nth, 1);
    blur_.Create(context_);
    EXPECT_THAT(log_.Take(), ElementsAre(StartsWith(report)));
    EXPECT_EQ(stand_ins::LivePBuffers(), created ? 2 : 0);
    EXPECT_EQ(blur_.StartDrawing(), created);
    blur_.EndDrawing();
    stand_ins::ClearCalls();
    blur_.GenerateBlur();
    blur_.DrawBlur();
    EXPECT_THAT(stand_ins::CallTexts(), IsEmpty());
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
