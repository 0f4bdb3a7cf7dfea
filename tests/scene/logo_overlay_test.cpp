#include "platform/clock.h"
#include "scene/logo_overlay.h"
#include "tests/stand_ins/stand_in_test.h"

namespace halvenor {
namespace {

using stand_ins::CallsOf;
using stand_ins::CallTexts;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kStart = 5000000000;

class LogoOverlayTest : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    clock::UseStepped(kStart);
    display_.Open(&port_);
    Resize(480);
  }
  void TearDown() override {
    display_.Close();
    clock::UseRealTime();
    StandInTest::TearDown();
  }

  void Resize(std::int16_t height) {
    const Rect rect = {0, 0, height, 640};
    display_.Resize(&port_, &rect);
  }
  // What the logo draws at `milliseconds` of its clock.
  static std::vector<std::string> Frame(LogoOverlay& logo, std::uint64_t milliseconds) {
    clock::Step(kStart + milliseconds * 1000000);
    stand_ins::ClearCalls();
    logo.Render();
    return CallTexts();
  }

  HalvenorPort port_ = stand_ins::OffscreenPort(640, 480);
  Display display_;
};

// One case, as the logo's clock starts once in a process.
TEST_F(LogoOverlayTest, ShowsForTwoSecondsOfARun) {
  stand_ins::LogLines log;
  LogoOverlay logo;
  logo.Open(&display_);
  EXPECT_EQ(CallsOf("gluBuild2DMipmaps").size(), 1U);
  EXPECT_EQ(Frame(logo, 1000),
            stand_ins::Listed(
                "glPushMatrix(); glScalef(0.75, 1, 1); glColor4f(1, 1, 1, 2.5); "
                "glBindTexture(GL_TEXTURE_2D, 1); glEnable(GL_TEXTURE_2D); "
                "glBegin(GL_TRIANGLE_STRIP); glTexCoord2f(0, 0); glVertex3f(-0.4, -0.3, 0); "
                "glTexCoord2f(1, 0); glVertex3f(0.4, -0.3, 0); glTexCoord2f(0, 1); "
                "glVertex3f(-0.4, 0.3, 0); glTexCoord2f(1, 1); "
                "glVertex3f(0.4, 0.3, 0); glEnd(); glPopMatrix()"));
  Resize(320);
  EXPECT_EQ(Frame(logo, 1100)[1], "glScalef(0.5, 1, 1)");
  Resize(0);
  EXPECT_THAT(Frame(logo, 1200), IsEmpty());
  Resize(480);

  logo.Close();
  EXPECT_EQ(stand_ins::LiveTextures(), 0);
  stand_ins::Fail("CFBundleGetBundleWithIdentifier", 1, 1, 1);
  logo.Open(&display_);
  EXPECT_THAT(log.Take(), ElementsAre("Bad bundle"));
  EXPECT_THAT(Frame(logo, 1300), IsEmpty()); // no white rectangle
  logo.Close();
  logo.Open(&display_); // goes on with the same clock

  const struct {
    std::uint64_t milliseconds;
    double grow, alpha;
  } cases[] = {{1600, 0, 1}, {1700, 0.07, 0.75}, {1800, 0.28, 0.5}, {1900, 0.63, 0.25}};
  for (const auto& [milliseconds, grow, alpha] : cases) {
    Frame(logo, milliseconds);
    EXPECT_NEAR(CallsOf("glColor4f").at(0).arguments[3], alpha, 1e-6) << milliseconds;
    const auto corners = CallsOf("glVertex3f");
    for (const std::size_t i : {0U, 1U, 2U, 3U}) {
      EXPECT_NEAR(corners.at(i).arguments[0], (i % 2 == 0 ? -1 : 1) * (0.4 + grow), 1e-6);
      EXPECT_NEAR(corners.at(i).arguments[1], (i < 2 ? -1 : 1) * (0.3 + grow), 1e-6);
    }
  }

  EXPECT_THAT(Frame(logo, 2000), IsEmpty());
  logo.Close();
  stand_ins::ClearCalls();
  logo.Open(&display_);
  EXPECT_THAT(CallTexts(), IsEmpty()); // retired
  EXPECT_EQ(stand_ins::LiveTextures(), 0);

  LogoOverlay another;
  another.Open(&display_);
  EXPECT_THAT(Frame(another, 2000), IsEmpty()); // it has no clock of its own
  another.Close();
}

} // namespace
} // namespace halvenor
