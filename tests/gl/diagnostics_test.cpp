#include "gl/diagnostics.h"
#include "tests/gl/context_test.h"

#include <algorithm>

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(PascalText, IsCutAt255Characters) {
  for (const std::size_t length : {0U, 1U, 255U, 256U, 300U}) {
    unsigned char pascal[kPascalBufferSize + 1] = {};
    pascal[kPascalBufferSize] = 0xEE; // must stay
    cstr2pstr(pascal, std::string(length, 'x').c_str());
    const auto kept = static_cast<std::ptrdiff_t>(std::min<std::size_t>(length, 255));
    EXPECT_EQ(pascal[0], kept);
    EXPECT_EQ(std::count(pascal + 1, std::end(pascal), 'x'), kept);
    EXPECT_EQ(pascal[kPascalBufferSize], 0xEE);
  }
}

using Diagnostics = ContextTest;

TEST_F(Diagnostics, GLErrorsHaveTheirTexts) {
  const std::pair<GLenum, const char*> cases[] = {
      {GL_INVALID_ENUM, "GL Error: Invalid enumeration"},
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
  stand_ins::Fail("aglUpdateContext", AGL_NO_BUFFER);
  aglUpdateContext(context_);
  aglReportError("pending");
  aglReportError("nothing pending any more");
  aglReportError("read before", AGL_BAD_FONT);
  EXPECT_THAT(log_.Take(), ElementsAre("pending : " + ErrorText(AGL_NO_BUFFER),
                                       "nothing pending any more : " + ErrorText(AGL_NO_ERROR),
                                       "read before : " + ErrorText(AGL_BAD_FONT)));

  const std::string longMessage(300, 'm');
  aglReportError(longMessage.c_str());
  EXPECT_THAT(log_.Take(), ElementsAre(longMessage.substr(0, 255)));
}

} // namespace
} // namespace halvenor
