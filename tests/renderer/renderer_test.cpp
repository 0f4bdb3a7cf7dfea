#include "platform/clock.h"
#include "renderer/font_system.h"
#include "renderer/renderer.h"
#include "tests/scene/drawn_texts.h"
#include "tests/stand_ins/log_lines.h"
#include "tests/stand_ins/offscreen_port.h"
#include "tests/stand_ins/stand_in_test.h"

#include <cmath>
#include <memory>

namespace halvenor {
namespace {

using stand_ins::CallCount;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr std::uint64_t kSecond = 1000000000;

class RendererTest : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    clock::UseStepped(kSecond);
    renderer_ = std::make_unique<Renderer>();
    data_->settings = DefaultSettings();
    data_->settings.numLines = 1;
    data_->settings.numFrequencyLabels = 0;
    data_->settings.showFrameRate = 0;
    data_->highestActiveBin = 150.0F;
  }
  void TearDown() override {
    renderer_.reset();
    EXPECT_EQ(stand_ins::LiveContexts() + stand_ins::LiveDisplayLists(), 0);
    EXPECT_EQ(stand_ins::CurrentContextNumber(), 0);
    clock::UseRealTime();
    StandInTest::TearDown();
  }

  void Advance(std::uint64_t nanoseconds) { clock::Step(clock::Now() + nanoseconds); }
  bool Open() { return renderer_->Open(&port_, &port_.bounds) == 1; }

  stand_ins::LogLines log_;
  HalvenorPort port_ = stand_ins::OffscreenPort(400, 200);
  std::unique_ptr<VisualPluginData> data_ = std::make_unique<VisualPluginData>();
  std::unique_ptr<Renderer> renderer_;
};

TEST_F(RendererTest, AFrameIsComposedInOrder) {
  ASSERT_TRUE(Open());
  FontSystem::SetSize(9);
  stand_ins::ClearCalls();
  renderer_->Render(data_.get());
  // Each drawing of the lines reaches from switching texturing off to switching it on again.
  std::vector<std::string> calls;
  bool inLines = false;
  for (const std::string& call : stand_ins::CallTexts()) {
    if (call.starts_with("glInterleavedArrays")) {
      inLines = true;
      calls.back() = "lines";
    }
    if (!inLines) calls.push_back(call);
    if (call == "glEnable(GL_TEXTURE_2D)") inLines = false;
  }
  EXPECT_THAT(calls,
              ElementsAre("aglSetDrawable(context 2, null)", "aglSetDrawable(context 2, port 1)",
                          "aglSetCurrentContext(context 2)", "glViewport(0, 0, 400, 200)",
                          "glClearColor(0, 0, 0, 1)", "glClear(GL_COLOR_BUFFER_BIT)",
                          "glEnable(GL_TEXTURE_2D)", "glBlendFunc(GL_SRC_ALPHA, GL_ONE)",
                          "glColor4f(1, 1, 1, 1)", "lines", "glLoadIdentity()", "lines",
                          "glLoadIdentity()", "lines", "glLoadIdentity()", "glLoadIdentity()",
                          "glColor4f(1, 1, 1, 0.3)", "glDisable(GL_TEXTURE_2D)",
                          "glEnable(GL_BLEND)", "aglSwapBuffers(context 2)", "aglGetError()",
                          "glGetError()"));
}

TEST_F(RendererTest, LinesAreDrawnThreeTimesOrFourWithTheOverlay) {
  ASSERT_TRUE(Open());
  for (const auto& [overlay, drawings] : {std::pair{0, 3U}, {1, 4U}, {-3, 4U}}) {
    data_->settings.sharpOverlay = overlay;
    stand_ins::ClearCalls();
    renderer_->Render(data_.get());
    EXPECT_EQ(stand_ins::CallsOf("glInterleavedArrays").size(), drawings);
  }
}

TEST_F(RendererTest, TheFrameRateStandsAtTheBottomRight) {
  ASSERT_TRUE(Open());
  data_->settings.showFrameRate = 1;
  Advance(kSecond / 20);
  stand_ins::ClearCalls();
  renderer_->Render(data_.get());
  const double base = 0; // any: only the length is looked at
  const auto texts = stand_ins::DrawnTexts(stand_ins::Calls(), base);
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_EQ(texts[0].text.size(), std::string("20.0 fps").size());
  EXPECT_NEAR(texts[0].x, 1 - 8 * 9 / 400.0, 1e-6);
  EXPECT_NEAR(texts[0].y, 0.5 * 9 * 1.5 / 200 - 1, 1e-6);
}

TEST_F(RendererTest, TheClockFollowsTheMeasuredInterval) {
  ASSERT_TRUE(Open());
  renderer_->Render(data_.get());
  Advance(kSecond / 60);
  data_->trackTextTime = 3000;
  data_->streamTextTime = kShownUntilChanged;
  renderer_->Render(data_.get());
  EXPECT_NEAR(renderer_->FrameScale(), 20 / 60.0, 1e-4);
  EXPECT_NEAR(renderer_->FramesPerSecond(), 0.95 * 20 + 0.05 * 60, 1e-2);
  EXPECT_EQ(data_->trackTextTime, 3000 - 16);
  EXPECT_EQ(data_->streamTextTime, kShownUntilChanged);

  // Two frames at one moment: no interval, and the rate stays finite.
  const float fps = renderer_->FramesPerSecond();
  renderer_->Render(data_.get());
  EXPECT_EQ(renderer_->FramesPerSecond(), fps);
  EXPECT_EQ(renderer_->FrameScale(), 0.0F);

  // An hour without frames comes in milliseconds; a time may fall below zero and stays there.
  data_->streamTextTime = -5;
  Advance(3600 * kSecond);
  renderer_->Render(data_.get());
  EXPECT_NEAR(renderer_->FrameScale(), 72000.0F, 1);
  EXPECT_EQ(data_->trackTextTime, 2984 - 3600000);
  EXPECT_EQ(data_->streamTextTime, -5);
}

TEST_F(RendererTest, DrawsNothingWhenClosedOrWithoutARecord) {
  renderer_->Render(data_.get());
  renderer_->Close();
  EXPECT_EQ(renderer_->Resize(&port_, &port_.bounds), 0);
  EXPECT_THAT(stand_ins::CallTexts(), IsEmpty());
  ASSERT_TRUE(Open());
  stand_ins::ClearCalls();
  Advance(kSecond);
  renderer_->Render(nullptr);
  EXPECT_THAT(stand_ins::CallTexts(), IsEmpty());
  Advance(kSecond);
  renderer_->Render(data_.get()); // the clock was left alone
  EXPECT_NEAR(renderer_->FrameScale(), 40.0F, 1e-3);
}

TEST_F(RendererTest, ClosesWithoutAFrameAndReopens) {
  for (int opening = 0; opening < 3; ++opening) {
    ASSERT_TRUE(Open());
    aglSetCurrentContext(nullptr); // as after the lock was let go
    if (opening == 1) {
      ASSERT_TRUE(Open()); // closes first
    }
    renderer_->Close();
    EXPECT_FALSE(renderer_->IsOpen());
    EXPECT_EQ(stand_ins::LiveContexts() + stand_ins::LiveDisplayLists(), 0);
  }
}

TEST_F(RendererTest, AFailedOpeningReleasesWhatItMade) {
  const struct {
    const char* function;
    unsigned error;
    const char* report;
  } cases[] = {{"aglUpdateContext", AGL_NO_BUFFER, "Failed to resize openGL window : "},
               {"aglSetCurrentContext", AGL_NO_OPENGL, "Failed to resize openGL window : "}};
  for (const auto& [function, error, report] : cases) {
    stand_ins::Reset();
    stand_ins::Fail(function, error);
    EXPECT_FALSE(Open());
    EXPECT_THAT(log_.Take(), ElementsAre(StartsWith(report)));
    EXPECT_EQ(stand_ins::LiveContexts() + stand_ins::LivePixelFormats() +
                  stand_ins::LiveDisplayLists(),
              0);
  }
  stand_ins::Reset();
  // Without a font it opens all the same; with an error after the font it does not.
  stand_ins::Fail("aglUseFont", AGL_BAD_FONT);
  EXPECT_TRUE(Open());
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("aglUseFont failed : ")));
  renderer_->Close();
  stand_ins::Reset();
  stand_ins::OnCall("glDeleteLists", [this] { aglSetDrawable(nullptr, &port_); });
  stand_ins::Fail("aglUseFont", AGL_BAD_FONT);
  EXPECT_FALSE(Open());
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("aglUseFont failed : "),
                                       StartsWith("Failed to set up openGL : ")));
  EXPECT_EQ(stand_ins::LiveContexts() + stand_ins::LiveDisplayLists(), 0);
}

TEST_F(RendererTest, FrameErrorsAreReportedAndTheNextFrameIsDrawn) {
  ASSERT_TRUE(Open());
  stand_ins::Fail("aglSwapBuffers", AGL_BAD_DRAWABLE, 1, 1);
  renderer_->Render(data_.get());
  stand_ins::InjectGlError(GL_OUT_OF_MEMORY);
  renderer_->Render(data_.get());
  EXPECT_THAT(log_.Take(),
              ElementsAre(StartsWith("OpenGL rendering problem : "), "GL Error: Out of memory"));
  const auto swaps = CallCount("aglSwapBuffers");
  renderer_->Render(data_.get());
  EXPECT_EQ(CallCount("aglSwapBuffers"), swaps + 1);
  EXPECT_THAT(log_.Take(), IsEmpty());
}

TEST_F(RendererTest, KeysAreLeftToTheHost) {
  for (const char key : {'a', 'A', ' ', '\xFF'})
    EXPECT_EQ(renderer_->KeyboardInput(data_.get(), key), status::kNotHandled);
}

} // namespace
} // namespace halvenor
