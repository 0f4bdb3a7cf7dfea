// Contexts that the processor draws, and what a host can do to their ports.
#include "platform/gl_choice.h"
#include "tests/platform/gl_fixture.h"
#include "tests/support/process_use.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <sys/resource.h>

namespace halvenor {
namespace {

class CpuTest : public GlTest {
protected:
  CpuTest() { ChooseGl(GlChoice::Cpu); }
  ~CpuTest() override { ChooseGl(GlChoice::Automatic); }

  void SetUp() override {
    GlTest::SetUp();
    ASSERT_TRUE(aglSetCurrentContext(context.context));
  }

  void Resize(int width, int height) {
    port.port.bounds = MakeRect(width, height);
    EXPECT_TRUE(aglUpdateContext(context.context));
    glViewport(0, 0, width, height);
  }

  /// Red, with blue in the left half of the upper half, and swaps.
  void Draw() {
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glColor4f(0, 0, 1, 1);
    glBegin(GL_TRIANGLE_STRIP);
    for (const auto& [x, y] : {std::pair{-1.0F, 0.0F}, {0.0F, 0.0F}, {-1.0F, 1.0F}, {0.0F, 1.0F}})
      glVertex3f(x, y, 0);
    glEnd();
    aglSwapBuffers(context.context);
  }

  template <class Shown>
  static void ExpectDrawn(Shown& shown, int width, int height) {
    EXPECT_EQ(shown.At(0, 0), kBlue);
    EXPECT_EQ(shown.At(width / 2 - 1, height / 2 - 1), kBlue);
    EXPECT_EQ(shown.At(width / 2, 0), kRed);
    EXPECT_EQ(shown.At(0, height / 2), kRed);
    EXPECT_EQ(shown.At(width - 1, height - 1), kRed);
  }

  OffscreenPort port{34, 18};
  TestContext context{&port.port};
};

TEST_F(CpuTest, FramesGoStraightToTheHostsMemory) {
  glViewport(0, 0, 34, 18);
  HostMemory memory(port);
  for (const bool turns : {false, true}) {
    if (turns) memory.TurnOver(port);
    Draw();
    EXPECT_EQ(port.topRow, port.port.destination);
    ExpectDrawn(memory, 34, 18);
    ExpectDrawn(port.image, 34, 18);
    EXPECT_EQ(memory.Trespasses(), 0);
  }
  const std::uint8_t* const before = std::exchange(port.port.destination, nullptr);
  Draw();
  EXPECT_NE(port.topRow, before);
  ExpectDrawn(port.image, 34, 18);
}

// Wider, narrower, one row: what one size leaves behind must not show at the next.
TEST_F(CpuTest, PicturesFollowThePortsSize) {
  for (const auto& [width, height] : {std::pair{1200, 20}, {34, 700}, {2, 2}, {640, 480}}) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    Resize(width, height);
    for (const bool ownsMemory : {false, true}) {
      HostMemory memory(port);
      if (!ownsMemory) port.port.destination = nullptr;
      Draw();
      ExpectDrawn(port.image, width, height);
      EXPECT_EQ(memory.Trespasses(), ownsMemory ? 0 : -4 * width * height);
      port.port.destination = nullptr;
    }
  }
}

#ifndef HALVENOR_SANITIZED
/// For as long as it lives, this process gets no large memory.
class NoMemory {
public:
  NoMemory() {
    getrlimit(RLIMIT_AS, &before_);
    const rlimit limited = {BytesMapped() + (std::size_t{32} << 20), before_.rlim_max};
    setrlimit(RLIMIT_AS, &limited);
  }
  ~NoMemory() { setrlimit(RLIMIT_AS, &before_); }
  NoMemory(const NoMemory&) = delete;
  NoMemory& operator=(const NoMemory&) = delete;

private:
  static std::size_t BytesMapped() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  }
  rlimit before_{};
};

TEST_F(CpuTest, WithoutMemoryPicturesAreLostAndComeBack) {
  {
    const NoMemory none;
    log.Take();
    Resize(8000, 6000);
    Draw();
    EXPECT_EQ(port.frames, 0);
    Draw(); // told once
    EXPECT_THAT(log.Take(), testing::ElementsAre(testing::HasSubstr("memory")));

    AGLPbuffer buffer = nullptr;
    GLuint texture = 0;
    EXPECT_TRUE(aglCreatePBuffer(8192, 8192, GL_TEXTURE_2D, GL_RGBA, 0, &buffer));
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    EXPECT_FALSE(aglTexImagePBuffer(context.context, buffer, GL_FRONT));
    EXPECT_NE(aglGetError(), GLenum{AGL_NO_ERROR});
    EXPECT_TRUE(aglDestroyPBuffer(buffer));
    glDeleteTextures(1, &texture);
  }
  Resize(34, 18);
  Draw();
  ExpectDrawn(port.image, 34, 18);
}
#endif

} // namespace
} // namespace halvenor
