#include "renderer/renderer.h"
#include "renderer/surface/font_system.h"
#include "tests/renderer/renderer_fixture.h"

#include <cmath>

namespace halvenor {
namespace {

using stand_ins::CallCount;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

TEST_F(RendererTest, AFrameWithoutOffscreenBuffersIsTheLinesThreeTimesOver) {
  stand_ins::Fail("aglCreatePBuffer", AGL_NO_BUFFER);
  ASSERT_TRUE(Open());
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("pBuffers not supported : ")));
  FontSystem::SetSize(9);
  EXPECT_EQ(Frame(),
            stand_ins::Listed("aglSetDrawable(context 2, null); aglSetDrawable(context 2, port 1); "
                              "aglSetCurrentContext(context 2); glViewport(0, 0, 400, 200); "
                              "glClearColor(0, 0, 0, 1); glClear(GL_COLOR_BUFFER_BIT); "
                              "glEnable(GL_TEXTURE_2D); glBlendFunc(GL_SRC_ALPHA, GL_ONE); "
                              "glColor4f(1, 1, 1, 1); lines; lines; lines; glLoadIdentity(); "
                              "glColor4f(1, 1, 1, 0.3); glDisable(GL_TEXTURE_2D); "
                              "glEnable(GL_BLEND); aglSwapBuffers(context 2); aglGetError(); "
                              "glGetError()"));
  data_->settings.sharpOverlay = -3;
  EXPECT_THAT(Frame(), testing::Contains("lines").Times(4));
}

TEST_F(RendererTest, AFrameIsComposedInOrder) {
  ASSERT_TRUE(Open());
  FontSystem::SetSize(9);
  data_->settings.smoothing = 0;
  data_->settings.glow = 0;
  data_->settings.fade = 0.25F;
  data_->settings.zoom = 0.5F; // with the silence: no zoom at all
  const std::vector<std::string> expected = stand_ins::Listed(
      "aglGetVirtualScreen(context 2); aglSetPBuffer(context 2, pbuffer 1, 0, 0, 0); "
      "glViewport(0, 0, 512, 512); aglGetError(); glBindTexture(GL_TEXTURE_2D, 2); "
      "glEnable(GL_TEXTURE_2D); glBlendFunc(GL_SRC_ALPHA, GL_ONE); glEnable(GL_BLEND); "
      "glClearColor(0, 0, 0, 1); glClear(GL_COLOR_BUFFER_BIT); glLoadIdentity(); "
      "glColor4f(1, 1, 1, 0.75); quad 1, 1; lines; aglSwapBuffers(context 2); aglGetError(); "
      "glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR); aglSetDrawable(context 2, null); "
      "aglSetDrawable(context 2, port 1); aglSetCurrentContext(context 2); "
      "glViewport(0, 0, 400, 200); glClearColor(0, 0, 0, 1); glClear(GL_COLOR_BUFFER_BIT); "
      "glEnable(GL_TEXTURE_2D); glBlendFunc(GL_SRC_ALPHA, GL_ONE); glColor4f(1, 1, 1, 1); "
      "glBindTexture(GL_TEXTURE_2D, 1); quad 1, 1; glLoadIdentity(); glColor4f(1, 1, 1, 0.3); "
      "glDisable(GL_TEXTURE_2D); glEnable(GL_BLEND); aglSwapBuffers(context 2); aglGetError(); "
      "glGetError()");
  EXPECT_EQ(Frame(), expected);

  // The next frame has the buffers the other way round, and no memory of its own.
  std::vector<std::string> next = expected;
  next[1] = "aglSetPBuffer(context 2, pbuffer 2, 0, 0, 0)";
  next[4] = "glBindTexture(GL_TEXTURE_2D, 1)";
  next[26] = "glBindTexture(GL_TEXTURE_2D, 2)";
  EXPECT_EQ(Frame(), next);
  EXPECT_EQ(Frame(), expected);

  data_->settings.sharpOverlay = 1;
  next.insert(next.begin() + 28, "lines");
  EXPECT_EQ(Frame(), next);
}

TEST_F(RendererTest, TheFeedbackImageZoomsWithTimeAndSound) {
  ASSERT_TRUE(Open());
  data_->settings.glow = 0;
  data_->settings.fade = 0.0F;
  const struct {
    float zoom, level, loudness, rotation;
    bool vertical, smoothing;
    double scale;
    int copies;
  } cases[] = {
      {0.5F, 0, 0, 0, false, false, 1.0, 1},         {0.5F, 0, 0, 0, false, true, 1.0, 2},
      {1.0F, 0, 0, 90, false, true, 1.25, 10},       {0.0F, 0, 0, 0, true, true, 0.75, 10},
      {0.7F, 0.1F, 0.2F, 10, false, true, 1.1, 4},   {0.7F, 0.1F, 0.2F, 10, true, false, 1.1, 1},
      {0.7F, 0.36F, 0.2F, 0, false, true, 1.212, 8}, {0.7F, 0.16F, 0.2F, 0, false, true, 1.152, 6},
      {1000.0F, 0, 0, 0, false, true, 500.75, 32},   {-1000.0F, 0, 0, 0, false, false, -499.25, 1}};
  for (const auto& c : cases) {
    data_->settings.zoom = c.zoom;
    data_->settings.zoomRotation = c.rotation;
    data_->settings.verticalLayout = c.vertical ? 1 : 0;
    data_->settings.smoothing = c.smoothing ? 1 : 0;
    data_->channelLevel[0] = data_->channelLevel[1] = c.level;
    data_->loudness = c.loudness;
    Advance(kSecond / 40); // half of a twentieth of a second: half of the zoom
    Frame();
    const auto corners = stand_ins::CallsOf("glVertex3f");
    // In single precision: PowerPC's double sine uses an instruction that qemu-ppc lacks.
    const float angle = (c.vertical ? 90.0F - c.rotation : c.rotation) * 3.1415829F / 180;
    for (int i = 1; i <= c.copies; ++i) {
      const double d = (c.scale - 1) * i * 0.5 / c.copies;
      const auto& corner = corners.at(static_cast<std::size_t>(4 * i - 1)).arguments;
      EXPECT_NEAR(corner[0], 1 + d * std::sin(angle), 1e-3) << "zoom " << c.zoom << ", copy " << i;
      EXPECT_NEAR(corner[1], 1 + d * std::cos(angle), 1e-3) << "zoom " << c.zoom << ", copy " << i;
    }
    EXPECT_NEAR(stand_ins::CallsOf("glColor4f")[0].arguments[3], 1.0 / c.copies, 1e-6);
    const auto& next = corners.at(static_cast<std::size_t>(4 * c.copies)).arguments;
    EXPECT_EQ(next[0], -1) << "no further copy, but the band or the finished image";
  }
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
    EXPECT_EQ(LiveObjects(), 0);
  }
}

TEST_F(RendererTest, AFailedOpeningReleasesWhatItMade) {
  stand_ins::Fail("aglUpdateContext", AGL_NO_OPENGL);
  EXPECT_FALSE(Open());
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("Failed to resize openGL window : ")));
  EXPECT_EQ(LiveObjects(), 0);
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
  EXPECT_EQ(LiveObjects(), 0);
}

TEST_F(RendererTest, FrameErrorsAreReportedAndTheNextFrameIsDrawn) {
  ASSERT_TRUE(Open());
  stand_ins::Fail("aglSwapBuffers", AGL_BAD_DRAWABLE, 6, 1); // the window's, after the buffers'
  renderer_->Render(data_.get());
  stand_ins::InjectGlError(GL_OUT_OF_MEMORY);
  renderer_->Render(data_.get());
  EXPECT_THAT(log_.Take(),
              ElementsAre(StartsWith("OpenGL rendering problem : "), "GL Error: Out of memory"));
  const auto swaps = CallCount("aglSwapBuffers");
  renderer_->Render(data_.get());
  EXPECT_EQ(CallCount("aglSwapBuffers"), swaps + 6);
  EXPECT_THAT(log_.Take(), IsEmpty());
}

} // namespace
} // namespace halvenor
