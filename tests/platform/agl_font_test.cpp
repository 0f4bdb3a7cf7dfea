// Glyphs as they come out of the real OpenGL.
#include "tests/platform/gl_fixture.h"

#include <algorithm>

namespace halvenor {
namespace {

constexpr int kSide = 64;
constexpr int kPenX = 20;
constexpr int kPenY = 20; ///< from the bottom

class FontTest : public GlTest {
protected:
  void SetUp() override {
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    GetFNum(reinterpret_cast<const unsigned char*>("\011Helvetica"), &family);
    ASSERT_GT(family, 0) << "no font is installed";
    lists = glGenLists(256);
  }

  void UseFont(int size) {
    ASSERT_TRUE(aglUseFont(context.context, family, 0, size, 0, 256, static_cast<GLint>(lists)));
  }

  /// The rows of the character's picture from the top down, without empty ones above and below;
  /// `bottom` and `advance` tell where it stood.
  std::vector<std::string> Draw(int character) {
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glRasterPos2f(2.0F * kPenX / kSide - 1, 2.0F * kPenY / kSide - 1);
    glCallList(lists + static_cast<GLuint>(character));
    float position[4] = {};
    glGetFloatv(GL_CURRENT_RASTER_POSITION, position);
    advance = position[0] - kPenX;
    aglSwapBuffers(context.context);
    std::vector<std::string> rows(kSide);
    for (int i = 0; i < kSide * kSide; ++i)
      rows[static_cast<std::size_t>(i / kSide)] +=
          port.image.At(i % kSide, i / kSide) == kWhite ? '#' : '.';
    const auto isInk = [](const std::string& row) { return row.find('#') != row.npos; };
    const auto last = std::find_if(rows.rbegin(), rows.rend(), isInk);
    bottom = static_cast<int>(last - rows.rbegin()) - kPenY;
    rows.erase(last.base(), rows.end());
    rows.erase(rows.begin(), std::find_if(rows.begin(), rows.end(), isInk));
    return rows;
  }

  static std::ptrdiff_t Ink(const std::string& row) { return std::ranges::count(row, '#'); }

  OffscreenPort port{kSide, kSide};
  TestContext context{&port.port};
  std::int16_t family = 0;
  GLuint lists = 0;
  int bottom = 0;
  float advance = 0;
};

TEST_F(FontTest, GlyphsStandUprightOnTheBaseLineAndMoveThePen) {
  UseFont(24);
  const auto letter = Draw('L');
  // Pixel store state of the plug-in's own does not garble them, and is kept.
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 5);
  glPixelStorei(GL_UNPACK_LSB_FIRST, GL_TRUE);
  UseFont(24);
  GLint rowLength = 0;
  glGetIntegerv(GL_UNPACK_ROW_LENGTH, &rowLength);
  EXPECT_EQ(rowLength, 5);
  EXPECT_EQ(Draw('L'), letter);

  EXPECT_EQ(bottom, 0);
  ASSERT_NEAR(static_cast<double>(letter.size()), 17.5, 1.5);
  EXPECT_GE(Ink(letter.back()), 9) << "the bar is below";
  EXPECT_LE(Ink(letter.front()), 4) << "the stem is above";
  EXPECT_NEAR(static_cast<double>(letter.front().find('#')), kPenX + 2, 2);
  EXPECT_EQ(letter.front().find('#'), letter.back().find('#')) << "the stem is on the left";
  EXPECT_NEAR(advance, 13.5, 1.5);

  Draw('g');
  EXPECT_LT(bottom, -2) << "a descender hangs below";
}

TEST_F(FontTest, SizesAreKeptTo) {
  for (const int size : {9, 24, 40}) {
    UseFont(size);
    EXPECT_NEAR(static_cast<double>(Draw('H').size()), 0.72 * size, 1.5) << size;
    EXPECT_NEAR(advance, 0.72 * size, 1.5) << size;
  }
}

TEST_F(FontTest, SmallLettersKeepTheirParts) {
  UseFont(9);
  const auto letter = Draw('i');
  const auto gap = std::find_if(letter.begin(), letter.end(),
                                [](const std::string& row) { return Ink(row) == 0; });
  EXPECT_EQ(gap - letter.begin(), 1) << "the dot";
  EXPECT_NE(Draw('8'), Draw('9'));
  EXPECT_NE(Draw('6'), Draw('8'));
}

TEST_F(FontTest, CharactersAreMacOsRoman) {
  UseFont(24);
  for (const auto& [plain, accented] :
       {std::pair{'e', 0x8E}, {'o', 0x97}, {'A', 0xE7}, {'U', 0x86}}) {
    const auto letter = Draw(plain);
    const auto higher = Draw(accented);
    ASSERT_GT(higher.size(), letter.size() + 2) << accented;
    EXPECT_TRUE(std::equal(letter.rbegin(), letter.rbegin() + 5, higher.rbegin())) << accented;
  }
  for (const int control : {0, 9, 10, 13, 31, 127}) {
    EXPECT_TRUE(Draw(control).empty()) << control;
    EXPECT_EQ(advance, 0) << control;
  }
  for (const int blank : {0x20, 0xCA}) {
    EXPECT_TRUE(Draw(blank).empty()) << blank;
    EXPECT_GE(advance, 5) << blank;
  }
}

TEST_F(FontTest, MisfitsAreRefusedWithTheirError) {
  const auto base = static_cast<GLint>(lists);
  for (const GLint size : {1, 512}) {
    EXPECT_TRUE(aglUseFont(context.context, family, 0, size, 'A', 2, base)) << size;
  }
  struct {
    GLint family, style, size, first, count, base;
    GLenum error;
  } const refused[] = {
      {family, 0, 0, 0, 256, base, AGL_BAD_FONT},
      {family, 0, 513, 0, 256, base, AGL_BAD_FONT},
      {family, 0, 1 << 30, 0, 256, base, AGL_BAD_FONT},
      {family, 1, 9, 0, 256, base, AGL_BAD_FONT},
      {0, 0, 9, 0, 256, base, AGL_BAD_FONT},
      {-1, 0, 9, 0, 256, base, AGL_BAD_FONT},
      {32767, 0, 9, 0, 256, base, AGL_BAD_FONT},
      {family, 0, 9, -1, 2, base, AGL_BAD_VALUE},
      {family, 0, 9, 255, 2, base, AGL_BAD_VALUE},
      {family, 0, 9, 0, -1, base, AGL_BAD_VALUE},
      {family, 0, 9, 0, 256, 0, AGL_BAD_VALUE},
  };
  for (const auto& c : refused) {
    EXPECT_FALSE(aglUseFont(context.context, c.family, c.style, c.size, c.first, c.count, c.base));
    EXPECT_EQ(aglGetError(), c.error) << c.size << ' ' << c.first << ' ' << c.count;
  }
}

TEST_F(FontTest, FamiliesHaveLastingNumbers) {
  std::int16_t again = 0;
  GetFNum(reinterpret_cast<const unsigned char*>("\011Helvetica and more"), &again);
  EXPECT_EQ(again, family);
  std::int16_t strange = 0;
  GetFNum(reinterpret_cast<const unsigned char*>("\013No such one"), &strange);
  EXPECT_GT(strange, 0) << "the nearest relative";
}

} // namespace
} // namespace halvenor
