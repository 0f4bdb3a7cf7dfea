#include "platform/clock.h"
#include "scene/logo_overlay.h"
#include "tests/renderer/surface/display_fixture.h"

namespace halvenor {
namespace {

using stand_ins::CallsOf;
using stand_ins::CallTexts;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kStart = 5000000000;

class LogoOverlayTest : public OpenDisplayTest {
protected:
  void SetUp() override {
    OpenDisplayTest::SetUp();
    clock::UseStepped(kStart);
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
  static void ExpectFrame(LogoOverlay& logo, std::uint64_t milliseconds, const std::string& alpha,
                          const std::string& x, const std::string& y) {
    EXPECT_EQ(Frame(logo, milliseconds),
              stand_ins::Listed("glPushMatrix(); glScalef(0.75, 1, 1); glColor4f(1, 1, 1, " +
                                alpha + "); glBindTexture(GL_TEXTURE_2D, " +
                                std::to_string(stand_ins::CallCount("glGenTextures")) +
                                "); glEnable(GL_TEXTURE_2D); glBegin(GL_TRIANGLE_STRIP); " +
                                "glTexCoord2f(0, 0); glVertex3f(-" + x + ", -" + y +
                                ", 0); glTexCoord2f(1, 0); glVertex3f(" + x + ", -" + y +
                                ", 0); glTexCoord2f(0, 1); glVertex3f(-" + x + ", " + y +
                                ", 0); glTexCoord2f(1, 1); glVertex3f(" + x + ", " + y +
                                ", 0); glEnd(); glPopMatrix()"));
  }
};

// One case, as the logo's clock starts once in a process.
TEST_F(LogoOverlayTest, ShowsForTwoSecondsOfARun) {
  LogoOverlay logo;
  logo.Open(&display_);
  EXPECT_EQ(CallsOf("gluBuild2DMipmaps").size(), 1U);
  ExpectFrame(logo, 1000, "2.5", "0.4", "0.3");
  Resize(320);
  EXPECT_EQ(Frame(logo, 1100)[1], "glScalef(0.5, 1, 1)");
  Resize(0);
  EXPECT_THAT(Frame(logo, 1200), IsEmpty());
  Resize(480);

  logo.Close();
  EXPECT_EQ(stand_ins::LiveTextures(), 0);
  stand_ins::Fail("CFBundleGetBundleWithIdentifier", 1, 1, 1);
  logo.Open(&display_);
  EXPECT_THAT(log_.Take(), ElementsAre("Bad bundle"));
  EXPECT_THAT(Frame(logo, 1300), IsEmpty()); // no white rectangle
  logo.Close();
  logo.Open(&display_); // goes on with the same clock

  ExpectFrame(logo, 1600, "1", "0.4", "0.3");
  ExpectFrame(logo, 1700, "0.75", "0.47", "0.37");
  ExpectFrame(logo, 1900, "0.25", "1.03", "0.93");

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
