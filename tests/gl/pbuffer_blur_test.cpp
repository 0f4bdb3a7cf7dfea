#include "gl/pbuffer_blur.h"
#include "tests/gl/context_test.h"

namespace halvenor {
namespace {

using stand_ins::CallTexts;
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

  PBufferBlur blur_;
};

// The pictures are drawn with programs.
TEST_F(PBufferBlurTest, WithoutProgramsItAddsShiftedCopies) {
  const auto expectCopies = [](double spread, int texture, const char* color) {
    const auto corners = stand_ins::CallsOf("glVertex3f");
    ASSERT_EQ(corners.size(), 20U);
    const double copies[5][2] = {{0, 0}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
    for (std::size_t copy = 0; copy < 5; ++copy)
      for (std::size_t axis = 0; axis < 2; ++axis)
        EXPECT_NEAR(corners[4 * copy].arguments[axis], copies[copy][axis] * spread - 1, 1e-6);
    EXPECT_EQ(stand_ins::CallsOf("glColor4f").back().text, color);
    ASSERT_FALSE(stand_ins::CallsOf("glBindTexture").empty());
    EXPECT_EQ(stand_ins::CallsOf("glBindTexture").back().arguments[1], texture);
    stand_ins::ClearCalls();
  };
  stand_ins::SetExtensions("");
  CreateAndDraw();
  blur_.GenerateBlur();
  expectCopies(0.008, 1, "glColor4f(1, 1, 1, 0.5)");
  blur_.DrawBlur();
  expectCopies(0.01, 3, "glColor4f(0.5, 0.5, 0.5, 0.2)");
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
