// The misuses that the stand-ins report: no other suite has any. That they show every call with its
// arguments, and fail where they are told to, is what the suites over them look at.
#include "tests/stand_ins/agl_behavior.h"
#include "tests/stand_ins/stand_in_test.h"

namespace halvenor::stand_ins {
namespace {

using testing::ElementsAre;

class StandIns : public StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    MakeContext();
  }
  void MakeContext() {
    const GLint attributes[] = {AGL_RGBA, AGL_NONE};
    format_ = aglChoosePixelFormat(nullptr, 0, attributes);
    context_ = aglCreateContext(format_, nullptr);
    aglSetDrawable(context_, &port_);
    aglSetCurrentContext(context_);
    ClearCalls();
  }
  // What was misused on purpose; all begins anew.
  std::vector<std::string> TakeMisuses() {
    std::vector<std::string> misuses = Misuses();
    Reset();
    MakeContext();
    return misuses;
  }

  HalvenorPort port_ = OffscreenPort(30, 40);
  AGLPixelFormat format_ = nullptr;
  AGLContext context_ = nullptr;
};

TEST_F(StandIns, TellWhatTheRealLibrariesNeedNotSurvive) {
  glBegin(GL_LINES);
  glColor4f(1, 1, 1, 1);
  glCallList(1);
  glVertex2f(0, 0);
  glLoadIdentity();
  glEnd();
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glDeleteTextures(1, &texture);
  glDeleteTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 5);
  std::thread([this] {
    glLoadIdentity();
    EXPECT_FALSE(aglSetCurrentContext(context_));
    EXPECT_FALSE(aglDestroyContext(context_));
  }).join();
  EXPECT_THAT(TakeMisuses(),
              ElementsAre("glLoadIdentity between glBegin and glEnd",
                          "glDeleteTextures of 1, which is not there",
                          "glBindTexture of 1, which is not there",
                          "glBindProgramARB of 5, which is not there",
                          "glLoadIdentity without a current context",
                          "aglSetCurrentContext: context 1 is current on another thread",
                          "aglDestroyContext: context 1 is current on another thread"));

  aglSetCurrentContext(nullptr);
  std::thread([this] { aglSetCurrentContext(context_); }).join();
  AGLPbuffer pbuffer = nullptr;
  aglSetCurrentContext(context_);
  aglCreatePBuffer(64, 32, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer);
  aglDestroyPBuffer(pbuffer);
  aglDestroyPBuffer(pbuffer);
  aglCreatePBuffer(64, 32, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer);
  aglDestroyContext(context_);
  EXPECT_FALSE(aglUpdateContext(context_));
  aglDestroyPixelFormat(format_);
  aglDestroyPixelFormat(format_);
  EXPECT_THAT(TakeMisuses(), ElementsAre("a thread ended with context 1 current",
                                         "aglDestroyPBuffer: pbuffer 1 was destroyed before",
                                         "aglDestroyContext: context 1 still has pbuffers",
                                         "aglUpdateContext: context 1 was destroyed before",
                                         "aglDestroyPixelFormat: format 1 was destroyed before"));
}

} // namespace
} // namespace halvenor::stand_ins
