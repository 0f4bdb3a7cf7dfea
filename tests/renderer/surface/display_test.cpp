#include "renderer/surface/display.h"
#include "tests/stand_ins/stand_in_test.h"

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class DisplayTest : public stand_ins::StandInTest {
protected:
  HalvenorPort port_ = stand_ins::OffscreenPort(640, 480);
  Rect rect_ = {20, 10, 220, 410}; // top, left, bottom, right
  Display display_;
};

TEST_F(DisplayTest, OpensResizesDrawsAndCloses) {
  display_.Open(&port_);
  EXPECT_EQ(display_.Resize(&port_, &rect_), 1);
  EXPECT_EQ(display_.Width(), 400);
  EXPECT_EQ(display_.Height(), 200);
  EXPECT_EQ(display_.ScreenRatio(), 2.0F);
  display_.StartRendering();
  display_.EndRendering();
  display_.Close();
  EXPECT_EQ(
      stand_ins::CallTexts(),
      stand_ins::Listed(
          "aglGetError(); aglChoosePixelFormat(4, 5, 8, 8, 11, 8, 12, 24, 74, 72); "
          "aglCreateContext(format 1, null); aglSetInteger(context 1, AGL_BUFFER_NAME, 1); "
          "aglCreateContext(format 1, null); aglSetInteger(context 2, AGL_BUFFER_NAME, 1); "
          "aglSetDrawable(context 1, port 1); aglSetDrawable(context 2, port 1); "
          "aglSetCurrentContext(context 2); aglUpdateContext(context 2); "
          "aglSetCurrentContext(context 2); "
          "aglSetInteger(context 2, AGL_BUFFER_RECT, 10, 260, 400, 200); "
          "aglEnable(context 2, AGL_BUFFER_RECT); glViewport(0, 0, 400, 200); "
          "aglUpdateContext(context 2); aglGetError(); aglSetDrawable(context 2, null); "
          "aglSetDrawable(context 2, port 1); aglSetCurrentContext(context 2); "
          "aglSwapBuffers(context 2); aglSetCurrentContext(null); aglDestroyContext(context 2); "
          "aglDestroyContext(context 1); aglDestroyPixelFormat(format 1)"));
  EXPECT_EQ(stand_ins::LiveContexts() + stand_ins::LivePixelFormats(), 0);
}

TEST_F(DisplayTest, EveryOpeningHasAFreshBufferName) {
  for (const std::int32_t name : {1, 2, 3}) {
    display_.Open(&port_);
    EXPECT_EQ(display_.BufferName(), name);
    display_.Close();
    EXPECT_EQ(display_.Resize(&port_, &rect_), 0) << "nothing is open";
  }
  EXPECT_EQ(display_.Width(), 0);
  display_.Open(&port_);
  const Rect insideOut = {20, 10, 15, 5};
  display_.Resize(&port_, &insideOut);
  EXPECT_EQ(display_.Width(), 0);
  EXPECT_EQ(display_.Height(), 0);
  display_.Close();
}

TEST_F(DisplayTest, FailuresAreReportedOnceAndForgotten) {
  const struct {
    const char* function;
    unsigned error;
    std::size_t reports; // without a context there is nothing that could report
  } cases[] = {{"aglChoosePixelFormat", AGL_BAD_ATTRIBUTE, 0},
               {"aglCreateContext", AGL_NO_OPENGL, 0},
               {"aglSetCurrentContext", AGL_NO_DISPLAY, 1},
               {"aglUpdateContext", AGL_NO_BUFFER, 1},
               {"aglSetInteger", AGL_BAD_VALUE, 1}};
  for (const auto& [function, error, reports] : cases) {
    SCOPED_TRACE(function);
    for (const bool fails : {true, false}) {
      stand_ins::Fail(function, error, 1, fails ? stand_ins::kAllCalls : 0);
      display_.Open(&port_);
      EXPECT_EQ(display_.Resize(&port_, &rect_), fails ? 0 : 1);
      display_.Close();
      const auto told = log_.Take();
      EXPECT_EQ(told.size(), fails ? reports : 0);
      EXPECT_THAT(told, testing::Each(StartsWith("Failed to resize openGL window : ")));
      EXPECT_EQ(stand_ins::LiveContexts() + stand_ins::LivePixelFormats(), 0);
    }
  }
  stand_ins::Reset(); // without a context, a viewport goes nowhere
}

} // namespace
} // namespace halvenor
