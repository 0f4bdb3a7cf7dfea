#include "gl/diagnostics.h"
#include "tests/stand_ins/log_lines.h"
#include "tests/stand_ins/offscreen_port.h"
#include "tests/stand_ins/stand_in_test.h"

#include <GL/gl.h>

#include <string>

namespace halvenor {
namespace {

using stand_ins::LogLines;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(PascalText, IsCutAt255Characters) {
  for (const std::size_t length : {0U, 1U, 255U, 256U, 300U}) {
    const std::string text(length, 'x');
    unsigned char pascal[kPascalBufferSize + 1] = {};
    pascal[kPascalBufferSize] = 0xEE; // must stay
    cstr2pstr(pascal, text.c_str());
    const std::size_t kept = length < 255 ? length : 255;
    EXPECT_EQ(pascal[0], kept);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(pascal + 1), kept), text.substr(0, kept));
    EXPECT_EQ(pascal[kPascalBufferSize], 0xEE);
  }
}

class Diagnostics : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    const GLint attributes[] = {AGL_RGBA, AGL_NONE};
    format_ = aglChoosePixelFormat(nullptr, 0, attributes);
    context_ = aglCreateContext(format_, nullptr);
    aglSetDrawable(context_, &port_);
    aglSetCurrentContext(context_);
  }
  void TearDown() override {
    aglSetCurrentContext(nullptr);
    aglDestroyContext(context_);
    aglDestroyPixelFormat(format_);
    StandInTest::TearDown();
  }

  LogLines log_;
  HalvenorPort port_ = stand_ins::OffscreenPort(8, 8);
  AGLPixelFormat format_ = nullptr;
  AGLContext context_ = nullptr;
};

TEST_F(Diagnostics, GLErrorsHaveTheirTexts) {
  const struct {
    GLenum code;
    const char* text;
  } cases[] = {{GL_INVALID_ENUM, "GL Error: Invalid enumeration"},
               {GL_INVALID_VALUE, "GL Error: Invalid value"},
               {GL_INVALID_OPERATION, "GL Error: Invalid operation"},
               {GL_STACK_OVERFLOW, "GL Error: Stack overflow"},
               {GL_STACK_UNDERFLOW, "GL Error: Stack underflow"},
               {GL_OUT_OF_MEMORY, "GL Error: Out of memory"},
               {0x0506, "Unknown GL error"}};
  glCheckError();
  EXPECT_THAT(log_.Take(), IsEmpty());
  for (const auto& [code, text] : cases) {
    stand_ins::InjectGlError(code);
    glCheckError();
    EXPECT_THAT(log_.Take(), ElementsAre(text));
  }
  stand_ins::InjectGlError(GL_INVALID_ENUM);
  stand_ins::InjectGlError(GL_INVALID_VALUE);
  glCheckError(); // one code a call; the other is left for later
  EXPECT_THAT(log_.Take(), ElementsAre("GL Error: Invalid enumeration"));
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE));
}

TEST_F(Diagnostics, AglReportsShowTheErrorThatCausedThem) {
  const auto textOf = [](GLenum code) {
    return std::string(reinterpret_cast<const char*>(aglErrorString(code)));
  };
  stand_ins::Fail("aglUpdateContext", AGL_NO_BUFFER);
  aglUpdateContext(context_);
  aglReportError("pending");
  aglReportError("nothing pending any more");
  aglReportError("read before", AGL_BAD_FONT);
  EXPECT_THAT(log_.Take(), ElementsAre("pending : " + textOf(AGL_NO_BUFFER),
                                       "nothing pending any more : " + textOf(AGL_NO_ERROR),
                                       "read before : " + textOf(AGL_BAD_FONT)));
  EXPECT_NE(textOf(AGL_NO_BUFFER), textOf(AGL_NO_ERROR));

  const std::string longMessage(300, 'm');
  aglReportError(longMessage.c_str());
  EXPECT_THAT(log_.Take(), ElementsAre(longMessage.substr(0, 255)));
}

} // namespace
} // namespace halvenor
