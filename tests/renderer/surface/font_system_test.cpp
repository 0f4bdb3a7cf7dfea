#include "renderer/surface/font_system.h"
#include "tests/renderer/surface/display_fixture.h"

namespace halvenor {
namespace {

using stand_ins::CallCount;
using stand_ins::CallsOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using FontTest = OpenDisplayTest;

// One case, since the font's size belongs to the process.
TEST_F(FontTest, SizesSurviveAndGlyphsFollow) {
  EXPECT_EQ(FontSystem::GetSize(), 0);
  FontSystem::Open(&display_);
  EXPECT_EQ(FontSystem::GetSize(), 9);
  EXPECT_EQ(CallsOf("aglUseFont")[0].text, "aglUseFont(context 2, 7, 0, 9, 0, 256, 1)");

  FontSystem::SetSize(9); // no new glyphs
  EXPECT_EQ(CallCount("aglUseFont"), 1U);
  FontSystem::SetSize(24);
  EXPECT_EQ(FontSystem::GetSize(), 24);
  EXPECT_EQ(CallCount("aglUseFont"), 2U);
  EXPECT_EQ(stand_ins::LiveDisplayLists(), 256);
  FontSystem::Close();
  EXPECT_EQ(stand_ins::LiveDisplayLists(), 0);
  FontSystem::Open(&display_);
  EXPECT_EQ(FontSystem::GetSize(), 24);
  EXPECT_THAT(log_.Take(), IsEmpty());

  // A size that no font has: reported once, no glyphs; the next size tries again.
  stand_ins::Fail("aglUseFont", AGL_BAD_FONT, 1, 1);
  FontSystem::SetSize(1000000000);
  FontSystem::SetSize(1000000000);
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("aglUseFont failed : ")));
  EXPECT_EQ(FontSystem::GetSize(), 128);
  EXPECT_EQ(stand_ins::LiveDisplayLists(), 0);
  FontSystem::DrawCString("A", 0, 0);
  EXPECT_EQ(CallsOf("glCallList").back().text, "glCallList(65)"); // a list that does not exist
  FontSystem::SetSize(10);
  EXPECT_EQ(stand_ins::LiveDisplayLists(), 256);

  // An error beside a usable font.
  stand_ins::OnCall("aglUseFont", [this] { aglSetDrawable(nullptr, &port_); });
  FontSystem::SetSize(9);
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("Problem creating font : ")));
  EXPECT_EQ(stand_ins::LiveDisplayLists(), 256);
  FontSystem::Close();
}

TEST_F(FontTest, LineFeedsStartLowerAtTheSameX) {
  FontSystem::Open(&display_);
  FontSystem::SetSize(24); // 36 pixels a line: 0.15 of the picture's 480
  const double base = CallsOf("aglUseFont").back().arguments[6];
  stand_ins::ClearCalls();
  FontSystem::DrawCString("\nA\n\n\xFF", -0.5F, 1.0F);
  const auto list = [base](int code) {
    return "glCallList(" + std::to_string(static_cast<int>(base) + code) + ")";
  };
  EXPECT_THAT(stand_ins::CallTexts(),
              ElementsAre("glRasterPos3f(-0.5, 1, 0)", "glRasterPos3f(-0.5, 0.85, 0)", list(65),
                          "glRasterPos3f(-0.5, 0.7, 0)", "glRasterPos3f(-0.5, 0.55, 0)",
                          list(255)));
  FontSystem::Close();
}

} // namespace
} // namespace halvenor
