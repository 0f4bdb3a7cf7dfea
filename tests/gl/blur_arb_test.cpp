#include "gl/blur_arb.h"
#include "gl_calls/gl.h"
#include "tests/gl/context_test.h"

#include <sys/stat.h>

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BlurARBTest : public ResourcesTest {
protected:
  static std::string Load(const char* name) {
    std::string text = "what was there before";
    BlurARB::LoadFile(name, text);
    return text;
  }
};

TEST_F(BlurARBTest, FilesAreReadLineByLine) {
  const struct {
    std::string_view stored, read;
  } cases[] = {{"a\nb", "a\nb\n"}, {"a\nb\n", "a\nb\n"}, {"", ""},
               {"\n\n", "\n\n"},   {"a\r\n", "a\r\n"},   {"x", "x\n"}};
  for (const auto& [stored, read] : cases) {
    Write("text", stored);
    EXPECT_EQ(Load("text"), read);
  }
  EXPECT_THAT(log_.Take(), IsEmpty());
}

TEST_F(BlurARBTest, FilesThatCannotBeReadAreReported) {
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/zero", folder_ / "endless");
  for (const char* const name : {"missing.vp", ".", "pipe", "endless"}) {
    EXPECT_EQ(Load(name), "") << name;
    EXPECT_THAT(log_.Take(), ElementsAre("Couldn't open file")) << name;
  }
  Write("there", "text");
  const std::string deep(600 - std::min<std::size_t>(600, folder_.string().size()), 'd');
  stand_ins::SetResourcesFolder(folder_.string() + "/" + deep);
  EXPECT_EQ(Load("there"), "");
  stand_ins::SetResourcesFolder("/" + std::string(505, 'p')); // fits, but not with the name
  EXPECT_EQ(Load("there"), "");
  EXPECT_THAT(log_.Take(), ElementsAre("Couldn't open file", "Couldn't open file"));
  stand_ins::Fail("CFBundleGetBundleWithIdentifier", 1, 1, 1);
  EXPECT_EQ(Load("there"), "");
  stand_ins::Fail("CFBundleCopyResourcesDirectoryURL", 1, 1, 1);
  EXPECT_EQ(Load("there"), "");
  EXPECT_THAT(log_.Take(), ElementsAre("Bad bundle", "Bad URL"));
}

TEST_F(BlurARBTest, ProgramsAreReplacedAndTheirErrorsReported) {
  Write("good.vp", "!!ARBvp1.0\nEND\n");
  GLuint program = 0;
  for (int times = 0; times < 3; ++times) {
    BlurARB::LoadShader("good.vp", program, GL_VERTEX_PROGRAM_ARB);
    EXPECT_EQ(stand_ins::LivePrograms(), 1);
    EXPECT_EQ(stand_ins::ProgramText(program), "!!ARBvp1.0\nEND\n");
  }
  EXPECT_THAT(log_.Take(), IsEmpty());
  stand_ins::InjectProgramError(17, "no such register");
  BlurARB::LoadShader("good.vp", program, GL_VERTEX_PROGRAM_ARB);
  EXPECT_THAT(log_.Take(), ElementsAre("shader error at position: 17\nno such register\n"));
  BlurARB::LoadShader("missing.vp", program, GL_VERTEX_PROGRAM_ARB);
  EXPECT_THAT(log_.Take(),
              ElementsAre("Couldn't open file", testing::StartsWith("shader error at position: ")));
  glDeleteProgramsARB(1, &program);
}

TEST_F(BlurARBTest, NeedsBothExtensionsByTheirWholeNames) {
  stand_ins::SetExtensions("GL_ARB_vertex_program GL_ARB_fragment_program");
  EXPECT_TRUE(BlurARB::Supported());
  for (const char* lacking : {"GL_ARB_fragment_program", "GL_ARB_vertex_program",
                              "GL_ARB_fragment_program_shadow GL_ARB_vertex_program",
                              "GL_ARB_fragment_program GL_ARB_vertex_program2", ""}) {
    stand_ins::SetExtensions(lacking);
    EXPECT_FALSE(BlurARB::Supported()) << lacking;
    EXPECT_THAT(log_.Take(), ElementsAre(" Halvenor : ARB Shaders not supported!"));
    const BlurARB blur;
    EXPECT_EQ(stand_ins::LivePrograms(), 0);
    EXPECT_THAT(log_.Take(),
                ElementsAre(" Halvenor : Pixel shaders not supported.  How did we get here??"));
  }
}

} // namespace
} // namespace halvenor
