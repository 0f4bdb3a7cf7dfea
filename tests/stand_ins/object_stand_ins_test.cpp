// The stand-ins' textures, programs, pbuffers and bundle.
#define GL_GLEXT_PROTOTYPES
#include "gl/resource_file.h"
#include "platform/agl.h"
#include "platform/core_foundation.h"
#include "tests/stand_ins/offscreen_port.h"
#include "tests/stand_ins/stand_in_test.h"

#include <GL/glext.h>
#include <GL/glu.h>

#include <array>

namespace halvenor::stand_ins {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

class ObjectStandInsTest : public StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    MakeContext();
  }

  void MakeContext() {
    const GLint attributes[] = {AGL_RGBA, AGL_NONE};
    context_ = aglCreateContext(aglChoosePixelFormat(nullptr, 0, attributes), nullptr);
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

  static void LoadProgram(GLenum target, std::string_view text) {
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()),
                       text.data());
  }

  HalvenorPort port_ = OffscreenPort(30, 40);
  AGLContext context_ = nullptr;
};

TEST_F(ObjectStandInsTest, ShowArgumentsReadably) {
  GLuint texture = 0;
  const AGLPbuffer pbuffer = MakePBuffer(texture);
  aglSetPBuffer(context_, pbuffer, 0, 0, aglGetVirtualScreen(context_));
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4, 5, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
  glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
  glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 0, 0.006F, 1, 2, 3);
  gluCheckExtension(reinterpret_cast<const GLubyte*>("x"), glGetString(GL_VERSION));
  aglDestroyPBuffer(pbuffer);
  glDeleteTextures(1, &texture);
  EXPECT_THAT(
      CallTexts(),
      ElementsAre(
          "aglCreatePBuffer(64, 32, GL_TEXTURE_2D, GL_RGBA, 0)", "glGenTextures(1, pointer)",
          "glBindTexture(GL_TEXTURE_2D, 1)", "aglTexImagePBuffer(context 1, pbuffer 1, GL_FRONT)",
          "aglGetVirtualScreen(context 1)", "aglSetPBuffer(context 1, pbuffer 1, 0, 0, 0)",
          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)",
          "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4, 5, 0, GL_BGRA, GL_UNSIGNED_BYTE, null)",
          "glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST)",
          "glProgramLocalParameter4fARB(GL_VERTEX_PROGRAM_ARB, 0, 0.006, 1, 2, 3)",
          "glGetString(0x1F02)", "gluCheckExtension(\"x\", \"stand-in\")",
          "aglDestroyPBuffer(pbuffer 1)", "glDeleteTextures(1, 1)"));
}

TEST_F(ObjectStandInsTest, CountWhatIsAlive) {
  GLuint names[5] = {};
  glGenTextures(3, names);
  glGenProgramsARB(2, names + 3);
  GLuint texture = 0;
  const AGLPbuffer pbuffer = MakePBuffer(texture);
  EXPECT_EQ(LiveTextures(), 4);
  EXPECT_EQ(LivePrograms(), 2);
  EXPECT_EQ(LivePBuffers(), 1);
  aglDestroyPBuffer(pbuffer);
  glDeleteTextures(3, names);
  glDeleteProgramsARB(1, names + 3);
  EXPECT_EQ(LiveTextures(), 1);
  EXPECT_EQ(LivePrograms(), 1);
  EXPECT_EQ(LivePBuffers(), 0);
}

TEST_F(ObjectStandInsTest, ProgramsAreKeptAndRefused) {
  const auto position = [] {
    GLint at = 0;
    glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &at);
    return at;
  };
  const auto text = [] {
    return std::string(reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB)));
  };
  GLuint names[2] = {};
  glGenProgramsARB(2, names);
  glBindProgramARB(GL_VERTEX_PROGRAM_ARB, names[0]);
  glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, names[1]);
  InjectProgramError(17, "no such opcode", 2);
  LoadProgram(GL_VERTEX_PROGRAM_ARB, "!!ARBvp1.0 END");
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
  EXPECT_EQ(position(), -1);
  LoadProgram(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0 END");
  EXPECT_EQ(glGetError(), GLenum{GL_INVALID_OPERATION});
  EXPECT_EQ(position(), 17);
  EXPECT_EQ(text(), "no such opcode");
  EXPECT_EQ(ProgramText(names[0]), "!!ARBvp1.0 END");
  EXPECT_EQ(ProgramText(names[1]), "!!ARBfp1.0 END");
  for (const std::string_view wrong : {"", "!!ARBvp1.0 END"}) {
    LoadProgram(GL_FRAGMENT_PROGRAM_ARB, wrong);
    EXPECT_EQ(glGetError(), GLenum{GL_INVALID_OPERATION});
    EXPECT_EQ(position(), 0);
  }
}

TEST_F(ObjectStandInsTest, ExtensionsAreWholeWords) {
  const auto has = [](const char* name) {
    return gluCheckExtension(reinterpret_cast<const GLubyte*>(name), glGetString(GL_EXTENSIONS));
  };
  EXPECT_TRUE(has("GL_ARB_vertex_program"));
  EXPECT_TRUE(has("GL_ARB_fragment_program"));
  SetExtensions("GL_ARB_vertex_program2 GL_ARB_fragment_program");
  EXPECT_FALSE(has("GL_ARB_vertex_program"));
  EXPECT_TRUE(has("GL_ARB_fragment_program"));
}

TEST_F(ObjectStandInsTest, FaultsHitPBuffers) {
  GLuint texture = 0;
  Fail("aglCreatePBuffer", AGL_NO_BUFFER, 2, 1);
  const AGLPbuffer first = MakePBuffer(texture);
  AGLPbuffer second = first;
  EXPECT_FALSE(aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, &second));
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_BUFFER});
  EXPECT_EQ(LivePBuffers(), 1);
  aglDestroyPBuffer(first);
}

TEST_F(ObjectStandInsTest, TellUsesThatTheRealLayersNeedNotSurvive) {
  const auto take = [this] {
    std::vector<std::string> misuses = Misuses();
    Reset();
    MakeContext();
    return misuses;
  };
  GLuint texture = 0;
  AGLPbuffer pbuffer = MakePBuffer(texture);
  aglSetPBuffer(context_, pbuffer, 0, 0, 0);
  glBegin(GL_LINES);
  glEnd();
  EXPECT_THAT(Misuses(), IsEmpty()) << "bound and not texturing";
  glEnable(GL_TEXTURE_2D);
  glBegin(GL_LINES);
  glEnd();
  aglSetDrawable(context_, &port_);
  glBegin(GL_LINES);
  glEnd();
  EXPECT_THAT(take(), ElementsAre("glBegin into the pbuffer whose texture it reads"));

  pbuffer = MakePBuffer(texture);
  aglSetPBuffer(context_, pbuffer, 0, 0, 0);
  aglDestroyPBuffer(pbuffer);
  glClear(GL_COLOR_BUFFER_BIT);
  aglDestroyPBuffer(pbuffer);
  aglSetPBuffer(context_, pbuffer, 0, 0, 0);
  aglSetDrawable(context_, &port_);
  glClear(GL_COLOR_BUFFER_BIT);
  EXPECT_THAT(take(), ElementsAre("glClear into a pbuffer that was destroyed",
                                  "aglDestroyPBuffer: pbuffer 1 was destroyed before",
                                  "aglSetPBuffer: pbuffer 1 was destroyed before"));

  pbuffer = MakePBuffer(texture);
  glDeleteTextures(1, &texture);
  glDeleteTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 5);
  aglSetPBuffer(context_, pbuffer, 0, 0, 0);
  aglDestroyContext(context_);
  EXPECT_THAT(take(), ElementsAre("glDeleteTextures of 1, which is not there",
                                  "glBindTexture of 1, which is not there",
                                  "glBindProgramARB of 5, which is not there",
                                  "aglSetPBuffer: pbuffer 1 has lost its texture",
                                  "aglDestroyContext: context 1 still has pbuffers"));

  CFRelease(&texture);
  EXPECT_THAT(take(), ElementsAre("CFRelease of what is not there"));
}

TEST_F(ObjectStandInsTest, TheBundleHasTheFolderThatIsSet) {
  // The path in a buffer of `size`, or what is missing.
  const auto path = [](const char* identifier, std::ptrdiff_t size) -> std::string {
    const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(identifier);
    if (bundle == nullptr) return "no bundle";
    const CFURLRef url = CFBundleCopyResourcesDirectoryURL(bundle);
    if (url == nullptr) return "no resources";
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
  SetResourcesFolder(std::string(512, 'x'));
  EXPECT_EQ(path(kBundleIdentifier, 512), "too long");
  Fail("CFBundleCopyResourcesDirectoryURL", 1);
  EXPECT_EQ(path(kBundleIdentifier, 512), "no resources");
  Fail("CFBundleGetBundleWithIdentifier", 1);
  EXPECT_EQ(path(kBundleIdentifier, 512), "no bundle");
  CFRelease(nullptr);
}

} // namespace
} // namespace halvenor::stand_ins
