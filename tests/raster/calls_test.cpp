// Errors as OpenGL has them.
#include "raster/context.h"

#include <GL/glext.h>
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <utility>
#include <vector>

namespace halvenor::raster {
namespace {

using gl_calls::Table;

struct Case {
  const char* name;
  GLenum error;
  std::function<void(const Table&)> call;
};

constexpr char kWrongText[] = "!!ARBfp1.0\nNONSENSE;\nEND\n";
const GLuint kNone = 0;

const Case kCases[] = {
    {"begin with no mode", GL_INVALID_ENUM, [](const Table& gl) { gl.glBegin(GL_POLYGON + 1); }},
    {"end alone", GL_INVALID_OPERATION, [](const Table& gl) { gl.glEnd(); }},
    {"state inside", GL_INVALID_OPERATION,
     [](const Table& gl) {
       gl.glBegin(GL_LINES);
       gl.glEnable(GL_BLEND);
       gl.glEnd();
     }},
    {"vertices inside", GL_NO_ERROR,
     [](const Table& gl) {
       gl.glBegin(GL_LINES);
       gl.glColor4f(1, 1, 1, 1);
       gl.glVertex2f(0, 0);
       gl.glEnd();
     }},
    {"unknown switch", GL_INVALID_ENUM, [](const Table& gl) { gl.glEnable(0x1234); }},
    {"unknown factor", GL_INVALID_ENUM, [](const Table& gl) { gl.glBlendFunc(GL_ONE, 0x1234); }},
    {"pop the last", GL_STACK_UNDERFLOW, [](const Table& gl) { gl.glPopMatrix(); }},
    {"push too many", GL_STACK_OVERFLOW,
     [](const Table& gl) {
       for (int i = 0; i < 32; ++i)
         gl.glPushMatrix();
     }},
    {"viewport inside out", GL_INVALID_VALUE, [](const Table& gl) { gl.glViewport(0, 0, -1, 1); }},
    {"clear of nothing known", GL_INVALID_VALUE, [](const Table& gl) { gl.glClear(1); }},
    {"alignment of three", GL_INVALID_VALUE,
     [](const Table& gl) { gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 3); }},
    {"negative count of names", GL_INVALID_VALUE,
     [](const Table& gl) { gl.glDeleteTextures(-1, &kNone); }},
    {"negative count of lists", GL_INVALID_VALUE, [](const Table& gl) { gl.glGenLists(-1); }},
    {"negative count of vertices", GL_INVALID_VALUE,
     [](const Table& gl) { gl.glDrawArrays(GL_LINES, 0, -1); }},
    {"too large a texture", GL_INVALID_VALUE,
     [](const Table& gl) {
       gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 16385, 1, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
     }},
    {"texture of another kind", GL_INVALID_ENUM,
     [](const Table& gl) { gl.glBindTexture(0x1234, 1); }},
    {"wrong program text", GL_INVALID_OPERATION,
     [](const Table& gl) {
       gl.glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB,
                             sizeof kWrongText - 1, kWrongText);
     }},
    {"program of another target", GL_INVALID_OPERATION,
     [](const Table& gl) {
       gl.glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 7);
       gl.glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 7);
     }},
    {"parameter beyond the last", GL_INVALID_VALUE,
     [](const Table& gl) {
       gl.glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 96, 0, 0, 0, 0);
     }},
    {"drawing without a program", GL_INVALID_OPERATION,
     [](const Table& gl) {
       gl.glEnable(GL_FRAGMENT_PROGRAM_ARB);
       gl.glBegin(GL_TRIANGLE_STRIP);
       for (const auto& [x, y] : {std::pair(-1, -1), {1, -1}, {-1, 1}, {1, 1}})
         gl.glVertex2f(static_cast<float>(x), static_cast<float>(y));
       gl.glEnd();
     }},
};

TEST(Calls, SetTheErrorsOfOpenGL) {
  const Table& gl = Context::Functions();
  for (const Case& test : kCases) {
    SCOPED_TRACE(test.name);
    Context context;
    Context::MakeCurrent(&context);
    const Target target = Target::Make(4, 4);
    context.Bind(target);
    gl.glViewport(0, 0, 4, 4);
    test.call(gl);
    EXPECT_EQ(gl.glGetError(), test.error);
    EXPECT_EQ(gl.glGetError(), static_cast<GLenum>(GL_NO_ERROR));
  }
}

TEST(Calls, WithoutAContextDoNothing) {
  Context::MakeCurrent(nullptr);
  const Table& gl = Context::Functions();
  gl.glBegin(GL_LINES);
  EXPECT_EQ(gl.glGenLists(3), 0U);
  EXPECT_EQ(gl.glGetString(GL_VERSION), nullptr);
}

TEST(Calls, TextBeginsOnlyInsideTheView) {
  Context context;
  Context::MakeCurrent(&context);
  const Target target = Target::Make(8, 8);
  context.Bind(target);
  const Table& gl = Context::Functions();
  gl.glViewport(0, 0, 8, 8);
  const std::uint8_t row = 0xA0;
  const GLuint list = gl.glGenLists(1);
  context.DefineBitmapList(list, {3, 1, 0, 0, 4, 0, &row});
  gl.glRasterPos3f(-1, -1, 0);
  gl.glCallList(list);
  gl.glCallList(list);
  gl.glRasterPos3f(-1.1F, 0, 0); // outside: the two after it draw nothing
  gl.glCallList(list);
  std::array<std::uint8_t, std::size_t{4} * 8 * 8> pixels{};
  Destination to;
  to.width = to.height = 8;
  to.topRow = pixels.data();
  to.stride = 32;
  ASSERT_TRUE(context.Finish(target, to));
  for (std::size_t i = 0; i < 64; ++i) {
    const bool isSet = i == 56 || i == 58 || i == 60 || i == 62;
    EXPECT_EQ(pixels[4 * i], isSet ? 255 : 0) << i;
  }
}

// Rows that are known to be black are skipped; whatever is drawn there has to show, and to go.
TEST(Targets, ShowWhatIsDrawnOnBlackAndNoLonger) {
  constexpr int kSide = 32;
  const struct {
    const char* name;
    GLenum mode;
    std::vector<std::array<float, 2>> corners;
  } tests[] = {
      {"flat line", GL_LINES, {{-0.5F, 0.1F}, {0.5F, 0.2F}}},
      {"steep line", GL_LINES, {{0.1F, -0.5F}, {0.2F, 0.5F}}},
      {"point", GL_POINTS, {{0.3F, 0.3F}}},
      {"flat triangle", GL_TRIANGLES, {{-0.5F, 0.1F}, {0.5F, 0.1F}, {0.5F, 0.4F}}},
      {"steep triangle", GL_TRIANGLES, {{0.1F, -0.5F}, {0.1F, 0.5F}, {0.4F, 0.5F}}},
      {"box", GL_QUADS, {{-0.2F, -0.2F}, {0.2F, -0.2F}, {0.2F, 0.2F}, {-0.2F, 0.2F}}},
  };
  Context context;
  Context::MakeCurrent(&context);
  const Table& gl = Context::Functions();
  const Target trails = Target::Make(kSide, kSide);
  const Target window = Target::Make(kSide, kSide);
  GLuint texture = 0;
  gl.glGenTextures(1, &texture);
  gl.glBindTexture(GL_TEXTURE_2D, texture);
  gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  ASSERT_TRUE(context.ShowInBoundTexture(trails));
  gl.glViewport(0, 0, kSide, kSide);
  gl.glClearColor(0, 0, 0, 1);
  gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  const auto litPixels = [&] {
    context.Bind(window);
    gl.glDisable(GL_BLEND);
    gl.glEnable(GL_TEXTURE_2D);
    gl.glColor4f(1, 1, 1, 1);
    gl.glBegin(GL_TRIANGLE_STRIP);
    for (const auto& [x, y] : {std::pair{0.0F, 0.0F}, {1.0F, 0.0F}, {0.0F, 1.0F}, {1.0F, 1.0F}}) {
      gl.glTexCoord2f(x, y);
      gl.glVertex3f(2 * x - 1, 2 * y - 1, 0);
    }
    gl.glEnd();
    gl.glDisable(GL_TEXTURE_2D);
    std::array<std::uint8_t, std::size_t{4} * kSide * kSide> pixels{};
    Destination to;
    to.width = to.height = kSide;
    to.topRow = pixels.data();
    to.stride = std::ptrdiff_t{4} * kSide;
    EXPECT_TRUE(context.Finish(window, to));
    int lit = 0;
    for (std::size_t i = 0; i < pixels.size(); i += 4)
      lit += pixels[i] != 0 ? 1 : 0;
    return lit;
  };
  const auto clear = [&] {
    context.Bind(trails);
    gl.glClear(GL_COLOR_BUFFER_BIT);
  };
  clear();
  for (const auto& test : tests)
    for (const GLenum blending : {GLenum{GL_BLEND}, GLenum{0}}) {
      SCOPED_TRACE(testing::Message() << test.name << (blending != 0 ? ", added" : ""));
      EXPECT_EQ(litPixels(), 0);
      context.Bind(trails);
      if (blending != 0) gl.glEnable(blending);
      gl.glBegin(test.mode);
      float red = 1.0F;
      for (const auto& [x, y] : test.corners) {
        gl.glColor4f(red, 0, 0, 1);
        if (test.mode == GL_TRIANGLES) red -= 0.2F;
        gl.glVertex3f(x, y, 0);
      }
      gl.glEnd();
      EXPECT_GT(litPixels(), 0);
      clear();
    }
}

// Targets share their scratch rows; what a narrow one makes black is not black in a wide one.
TEST(Targets, LeaveNothingToEachOther) {
  constexpr int kWide = 64;
  constexpr int kRows = 16;
  Context context;
  context.SetThreads(1);
  Context::MakeCurrent(&context);
  const Table& gl = Context::Functions();
  std::vector<std::uint8_t> pixels(std::size_t{4} * kWide * kRows);
  const auto draw = [&](int width, float red, bool withPoint) {
    const Target target = Target::Make(width, kRows);
    context.Bind(target);
    gl.glViewport(0, 0, width, kRows);
    gl.glClearColor(red, 0, 0, 1);
    gl.glClear(GL_COLOR_BUFFER_BIT);
    gl.glBegin(GL_POINTS);
    if (withPoint) gl.glVertex3f(-0.5F, 0, 0);
    gl.glEnd();
    Destination to;
    to.width = width;
    to.height = kRows;
    to.topRow = pixels.data();
    to.stride = std::ptrdiff_t{4} * width;
    EXPECT_TRUE(context.Finish(target, to));
  };
  draw(kWide, 1, true);
  draw(kWide / 4, 0, false);
  draw(kWide, 0, true);
  int lit = 0;
  for (std::size_t i = 0; i < pixels.size(); i += 4)
    lit += pixels[i] != 0 ? 1 : 0;
  EXPECT_EQ(lit, 1);
}

TEST(Targets, OfSizesThatCannotBeAreEmpty) {
  for (const auto& [width, height] : {std::pair(0, 1), {1, -1}, {16385, 1}, {1, 1 << 30}})
    EXPECT_FALSE(Target::Make(width, height));
  Context context;
  Context::MakeCurrent(&context);
  EXPECT_FALSE(context.ShowInBoundTexture(Target::Make(4, 4))); // no texture bound
  EXPECT_FALSE(context.Finish(Target(), {}));
}

} // namespace
} // namespace halvenor::raster
