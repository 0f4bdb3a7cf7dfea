// The stand-ins themselves: what they show, count, refuse and tell. That they show every call with
// its arguments, and fail where they are told to, is what the suites over them look at.
#define GL_GLEXT_PROTOTYPES
#include "gl/resource_file.h"
#include "platform/agl.h"
#include "platform/core_foundation.h"
#include "tests/stand_ins/agl_behaviour.h"
#include "tests/stand_ins/allocation_counter.h"
#include "tests/stand_ins/stand_in_test.h"

#include <GL/glext.h>
#include <GL/glu.h>

#include <array>
#include <thread>

namespace halvenor::stand_ins {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class StandIns : public StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    MakeContext();
  }
  void MakeContext() {
    format_ = aglChoosePixelFormat(nullptr, 0, agl_behaviour::kAttributes);
    context_ = aglCreateContext(format_, nullptr);
    aglSetDrawable(context_, &port_);
    aglSetCurrentContext(context_);
    ClearCalls();
  }
  AGLPbuffer MakePBuffer(GLuint& texture) {
    AGLPbuffer pbuffer = nullptr;
    aglCreatePBuffer(64, 32, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer);
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    aglTexImagePBuffer(context_, pbuffer, GL_FRONT);
    return pbuffer;
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

TEST_F(StandIns, ShowWhatOtherSuitesDoNotLookAt) {
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | 1U);
  glColor4f(1, 0.1F, -0.0F, 1e-9F);
  glDisable(0x1234);
  gluCheckExtension(reinterpret_cast<const GLubyte*>("x"), glGetString(GL_VERSION));
  EXPECT_THAT(CallTexts(),
              ElementsAre("glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | 0x0001)",
                          "glColor4f(1, 0.1, 0, 1e-09)", "glDisable(0x1234)", "glGetString(0x1F02)",
                          "gluCheckExtension(\"x\", \"stand-in\")"));
  EXPECT_THAT(CallsOf("glColor4f").at(0).arguments, ElementsAre(1.0, double{0.1F}, 0.0, 1e-9F));
}

TEST_F(StandIns, CopyTheVerticesAsTheyWereWhenDrawn) {
  std::array<float, 10> numbers = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  glInterleavedArrays(GL_V2F, 8, numbers.data());
  glDrawArrays(GL_LINE_STRIP, 1, 2);
  glInterleavedArrays(GL_V2F, 12, numbers.data());
  glDrawArrays(GL_LINES, 0, 2);
  numbers.fill(-1);
  const std::vector<Call> calls = CallsOf("glDrawArrays");
  EXPECT_THAT(calls.at(0).vertices, ElementsAre(Vertex{2, 3}, Vertex{4, 5}));
  EXPECT_THAT(calls.at(1).vertices, ElementsAre(Vertex{0, 1}, Vertex{3, 4}));
}

TEST_F(StandIns, CountWhatIsAlive) {
  GLuint names[5] = {};
  glGenTextures(3, names);
  glGenProgramsARB(2, names + 3);
  GLuint texture = 0;
  const AGLPbuffer pbuffer = MakePBuffer(texture);
  const GLuint list = glGenLists(256);
  EXPECT_EQ(glGenLists(1), list + 256);
  const auto live = [] {
    return std::array{LiveContexts(), LivePixelFormats(), LivePBuffers(),
                      LiveTextures(), LivePrograms(),     LiveDisplayLists()};
  };
  EXPECT_THAT(live(), ElementsAre(1, 1, 1, 4, 2, 257));
  aglDestroyPBuffer(pbuffer);
  glDeleteTextures(3, names);
  glDeleteProgramsARB(1, names + 3);
  glDeleteLists(list, 256);
  aglDestroyContext(context_);
  aglDestroyPixelFormat(format_);
  aglDestroyPixelFormat(nullptr);
  EXPECT_THAT(live(), ElementsAre(0, 0, 0, 1, 1, 1));
  EXPECT_EQ(CurrentContextNumber(), 0);
}

TEST_F(StandIns, FaultsHitTheCallsTheyAreMeantFor) {
  Fail("aglSetCurrentContext", AGL_NO_OPENGL, 2, 1);
  EXPECT_TRUE(aglSetCurrentContext(nullptr));
  EXPECT_FALSE(aglSetCurrentContext(context_));
  EXPECT_EQ(CurrentContextNumber(), 0);
  EXPECT_TRUE(aglSetCurrentContext(context_));
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_OPENGL}) << "stays through a later success";
  AGLPbuffer pbuffer = nullptr;
  Fail("aglCreatePBuffer", AGL_NO_BUFFER);
  EXPECT_FALSE(aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer));
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_BUFFER});
  std::int16_t family = 1;
  Fail("GetFNum", 1);
  GetFNum(nullptr, &family);
  EXPECT_EQ(family, 0);
  Fail("GetFNum", 0, 1, 0);
  GetFNum(nullptr, &family);
  EXPECT_EQ(family, kFontFamily);
  InjectGlError(GL_INVALID_ENUM);
  Fail("glGenLists", GL_OUT_OF_MEMORY);
  EXPECT_EQ(glGenLists(256), 0U);
  EXPECT_EQ(glGetError(), GLenum{GL_INVALID_ENUM});
  EXPECT_EQ(glGetError(), GLenum{GL_OUT_OF_MEMORY});
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(StandIns, ProgramsAreKeptAndRefused) {
  const auto load = [](GLenum target, std::string_view text) {
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()),
                       text.data());
    GLint position = 0;
    glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &position);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(position < 0 ? GL_NO_ERROR : GL_INVALID_OPERATION));
    return position;
  };
  GLuint names[2] = {};
  glGenProgramsARB(2, names);
  glBindProgramARB(GL_VERTEX_PROGRAM_ARB, names[0]);
  glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, names[1]);
  EXPECT_EQ(load(GL_VERTEX_PROGRAM_ARB, "!!ARBvp1.0 END"), -1);
  InjectProgramError(17, "no such opcode");
  EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0 END"), 17);
  EXPECT_STREQ(reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB)),
               "no such opcode");
  EXPECT_EQ(ProgramText(names[0]), "!!ARBvp1.0 END");
  EXPECT_EQ(ProgramText(names[1]), "!!ARBfp1.0 END");
  for (const std::string_view wrong : {"", "!!ARBvp1.0 END"})
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, wrong), 0);
}

TEST_F(StandIns, TellCallsThatOpenGLWouldNotTake) {
  glBegin(GL_LINES);
  glColor4f(1, 1, 1, 1);
  glCallList(1);
  glVertex2f(0, 0);
  glLoadIdentity();
  glEnd();
  glEnd();
  glDrawArrays(GL_LINES, 0, 2);
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glDeleteTextures(1, &texture);
  glDeleteTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 5);
  std::thread([] { glLoadIdentity(); }).join();
  aglSetCurrentContext(nullptr);
  glEnable(GL_BLEND);
  CFRelease(&texture);
  EXPECT_THAT(TakeMisuses(),
              ElementsAre("glLoadIdentity between glBegin and glEnd", "glEnd without glBegin",
                          "glDrawArrays without a GL_V2F array",
                          "glDeleteTextures of 1, which is not there",
                          "glBindTexture of 1, which is not there",
                          "glBindProgramARB of 5, which is not there",
                          "glLoadIdentity without a current context",
                          "glEnable without a current context", "CFRelease of what is not there"));
}

TEST_F(StandIns, TellUsesOfContextsThatTheRealLayerNeedNotSurvive) {
  std::thread([this] {
    EXPECT_FALSE(aglSetCurrentContext(context_));
    EXPECT_FALSE(aglDestroyContext(context_));
  }).join();
  EXPECT_THAT(TakeMisuses(),
              ElementsAre("aglSetCurrentContext: context 1 is current on another thread",
                          "aglDestroyContext: context 1 is current on another thread"));
  aglSetCurrentContext(nullptr);
  std::thread([this] { aglSetCurrentContext(context_); }).join();
  EXPECT_THAT(TakeMisuses(), ElementsAre("a thread ended with context 1 current"));
  aglDestroyContext(context_);
  EXPECT_FALSE(aglUpdateContext(context_));
  aglDestroyPixelFormat(format_);
  aglDestroyPixelFormat(format_);
  EXPECT_EQ(aglCreateContext(format_, nullptr), nullptr);
  EXPECT_THAT(TakeMisuses(), ElementsAre("aglUpdateContext: context 1 was destroyed before",
                                         "aglDestroyPixelFormat: format 1 was destroyed before",
                                         "aglCreateContext: format 1 was destroyed before"));
}

TEST_F(StandIns, TellUsesOfPBuffersThatTheRealLayerNeedNotSurvive) {
  const auto draw = [] {
    glBegin(GL_LINES);
    glEnd();
  };
  GLuint texture = 0;
  AGLPbuffer pbuffer = MakePBuffer(texture);
  aglSetPBuffer(context_, pbuffer, 0, 0, 0);
  draw();
  EXPECT_THAT(Misuses(), IsEmpty()) << "bound and not texturing";
  glEnable(GL_TEXTURE_2D);
  draw();
  aglSetDrawable(context_, &port_);
  draw();
  aglSetPBuffer(context_, pbuffer, 0, 0, 0);
  aglDestroyPBuffer(pbuffer);
  glClear(GL_COLOR_BUFFER_BIT);
  aglDestroyPBuffer(pbuffer);
  aglSetPBuffer(context_, pbuffer, 0, 0, 0);
  aglSetDrawable(context_, &port_);
  glClear(GL_COLOR_BUFFER_BIT);
  pbuffer = MakePBuffer(texture);
  glDeleteTextures(1, &texture);
  aglSetPBuffer(context_, pbuffer, 0, 0, 0);
  aglDestroyContext(context_);
  EXPECT_THAT(TakeMisuses(), ElementsAre("glBegin into the pbuffer whose texture it reads",
                                         "glClear into a pbuffer that was destroyed",
                                         "aglDestroyPBuffer: pbuffer 1 was destroyed before",
                                         "aglSetPBuffer: pbuffer 1 was destroyed before",
                                         "aglSetPBuffer: pbuffer 2 has lost its texture",
                                         "aglDestroyContext: context 1 still has pbuffers"));
}

TEST_F(StandIns, SilenceRecordsAndAllocatesNothingButCountsOn) {
  const std::array<float, 4> numbers = {0, 1, 2, 3};
  SetSilent(true);
  const std::uint64_t before = AllocationsOfThisThread();
  for (int i = 0; i < 10; ++i) {
    aglSetDrawable(context_, &port_);
    aglSetCurrentContext(context_);
    glInterleavedArrays(GL_V2F, 8, numbers.data());
    glDrawArrays(GL_LINES, 0, 2);
    aglSwapBuffers(context_);
    (void)aglGetError();
    (void)glGetError();
  }
  EXPECT_EQ(AllocationsOfThisThread(), before);
  EXPECT_THAT(Calls(), IsEmpty());
  EXPECT_EQ(CallCount("glDrawArrays"), 10U);
  Fail("glGenLists", GL_OUT_OF_MEMORY);
  EXPECT_EQ(glGenLists(1), 0U);
  SetSilent(false);
  glLoadIdentity();
  EXPECT_THAT(CallTexts(), ElementsAre("glLoadIdentity()"));
}

TEST_F(StandIns, TheBundleHasTheFolderThatIsSet) {
  // The path in a buffer of `size`, or what is missing.
  const auto path = [](const char* identifier, std::ptrdiff_t size) -> std::string {
    const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(identifier);
    if (bundle == nullptr) return "no bundle";
    const CFURLRef url = CFBundleCopyResourcesDirectoryURL(bundle);
    EXPECT_EQ(LiveReferences(), 1);
    std::array<std::uint8_t, 512> buffer{};
    const bool fits = CFURLGetFileSystemRepresentation(url, true, buffer.data(), size);
    CFRelease(url);
    return fits ? reinterpret_cast<const char*>(buffer.data()) : "too long";
  };
  EXPECT_EQ(path("org.halvenor.other", 512), "no bundle");
  EXPECT_THAT(path(kBundleIdentifier, 512), EndsWith("/resources"));
  SetResourcesFolder("/nowhere");
  EXPECT_EQ(path(kBundleIdentifier, 9), "/nowhere");
  EXPECT_EQ(path(kBundleIdentifier, 8), "too long");
}

} // namespace
} // namespace halvenor::stand_ins
