// Frames that nobody sees, whoever draws them.
#include "platform/clock.h"
#include "platform/gl_choice.h"
#include "tests/platform/gl_fixture.h"

namespace halvenor {
namespace {

constexpr int kUnseenSide = 16;
constexpr GLuint kBlueTexel = 0xffff0000; // bytes R, G, B, A

/// An offscreen buffer and the texture that shows it.
struct ShownBuffer {
  AGLPbuffer buffer = nullptr;
  GLuint texture = 0;
};

void Clear(float red, float green, float blue) {
  glClearColor(red, green, blue, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
}

// The texture as a quad from `left` to `right`.
void Paint(GLuint texture, float left, float right) {
  glEnable(GL_TEXTURE_2D);
  glBindTexture(GL_TEXTURE_2D, texture);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glBegin(GL_TRIANGLE_STRIP);
  for (const auto& [x, y] : {std::pair{0.0F, 0.0F}, {1.0F, 0.0F}, {0.0F, 1.0F}, {1.0F, 1.0F}}) {
    glTexCoord2f(x, y);
    glVertex3f(left + (right - left) * x, 2 * y - 1, 0.0F);
  }
  glEnd();
  glDisable(GL_TEXTURE_2D);
}

class UnseenFrameTest : public GlTest, public testing::WithParamInterface<GlChoice> {
protected:
  UnseenFrameTest() { ChooseGl(GetParam()); }
  ~UnseenFrameTest() override { ChooseGl(GlChoice::Automatic); }

  /// Begins a frame that the host wants for `use`, in `buffer`.
  void Begin(HalvenorFrameUse use, const ShownBuffer& buffer) {
    EXPECT_TRUE(aglSetCurrentContext(nullptr));
    SetFrameUse(&port.port, use);
    EXPECT_TRUE(aglSetPBuffer(context.context, buffer.buffer, 0, 0, 0));
    SetFrameUse(&port.port, kHalvenorFrameUndrawn); // of no account once it has begun
    glViewport(0, 0, kUnseenSide, kUnseenSide);
  }
  void GoOnInPort() {
    aglSwapBuffers(context.context);
    EXPECT_TRUE(aglSetDrawable(context.context, &port.port));
    EXPECT_TRUE(aglSetCurrentContext(context.context));
    glViewport(0, 0, 2 * kUnseenSide, kUnseenSide);
  }

  OffscreenPort port{2 * kUnseenSide, kUnseenSide};
  TestContext context{&port.port};
};

TEST_P(UnseenFrameTest, DropsWhatIsDrawnAndKeepsWhatIsMade) {
  for (const HalvenorFrameUse use : {kHalvenorFrameTrailsOnly, kHalvenorFrameUndrawn}) {
    SCOPED_TRACE(use);
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    ShownBuffer buffer;
    EXPECT_TRUE(
        aglCreatePBuffer(kUnseenSide, kUnseenSide, GL_TEXTURE_2D, GL_RGBA, 0, &buffer.buffer));
    glGenTextures(1, &buffer.texture);
    glBindTexture(GL_TEXTURE_2D, buffer.texture);
    EXPECT_TRUE(aglTexImagePBuffer(context.context, buffer.buffer, GL_FRONT));
    const int shown = port.frames;
    Begin(kHalvenorFrameSeen, buffer);
    Clear(0.0F, 1.0F, 0.0F);
    GoOnInPort();

    Begin(use, buffer);
    Clear(1.0F, 0.0F, 0.0F);
    GoOnInPort();
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, &kBlueTexel);
    const GLuint list = glGenLists(1);
    std::int16_t family = 0;
    GetFNum(reinterpret_cast<const unsigned char*>("\011Helvetica"), &family);
    EXPECT_TRUE(
        aglUseFont(context.context, family, 0, kUnseenSide, 'H', 1, static_cast<GLint>(list)));
    glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
    Paint(texture, -1.0F, 1.0F);
    glEnable(GL_TRIANGLES);
    EXPECT_EQ(glGetError(), GLenum{GL_INVALID_ENUM});
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, static_cast<GLint>(texture));
    aglSwapBuffers(context.context);
    EXPECT_EQ(port.frames, shown) << "nobody was to see it";

    // The color is the one that was set before.
    Begin(kHalvenorFrameSeen, buffer);
    GoOnInPort();
    Clear(0.0F, 0.0F, 0.0F);
    Paint(buffer.texture, -1.0F, 0.0F);
    Paint(texture, 0.0F, 0.5F);
    glRasterPos3f(0.5F, -1.0F, 0.0F);
    glCallList(list);
    aglSwapBuffers(context.context);
    ASSERT_EQ(port.frames, shown + 1);
    EXPECT_EQ(port.image.At(3, 3), use == kHalvenorFrameTrailsOnly ? kRed : kGreen);
    EXPECT_EQ(port.image.At(kUnseenSide + 3, 3), kBlue);
    bool isWritten = false;
    for (int i = 0; i < kUnseenSide * kUnseenSide / 2; ++i)
      isWritten = isWritten || port.image.At(3 * kUnseenSide / 2 + i % (kUnseenSide / 2),
                                             i / (kUnseenSide / 2)) == kWhite;
    EXPECT_TRUE(isWritten);
    glDeleteTextures(1, &texture);
    glDeleteLists(list, 1);
    EXPECT_TRUE(aglDestroyPBuffer(buffer.buffer));
    glDeleteTextures(1, &buffer.texture);
  }
}

// The clock goes on by as much as each frame takes.
TEST_P(UnseenFrameTest, LateFramesHaveNoPictureWhereTheyAreToBeTimely) {
  const struct {
    std::uint64_t milliseconds;
    std::string shown;
  } cases[] = {{5, "+++++++++"}, {50, "++---+---+"}};
  for (const auto& [milliseconds, expected] : cases) {
    clock::UseStepped(1'000'000'000'000);
    TestContext fresh(&port.port);
    ASSERT_TRUE(aglSetCurrentContext(fresh.context));
    SetFrameUse(&port.port, kHalvenorFrameTimely);
    std::string shown;
    while (shown.size() < expected.size()) {
      const int before = port.frames;
      EXPECT_TRUE(aglSetCurrentContext(fresh.context));
      clock::UseStepped(clock::Now() + milliseconds * 1'000'000);
      aglSwapBuffers(fresh.context);
      shown += port.frames > before ? '+' : '-';
      EXPECT_TRUE(aglSetCurrentContext(nullptr));
    }
    EXPECT_EQ(shown, expected) << milliseconds;
    clock::UseRealTime();
  }
}

INSTANTIATE_TEST_SUITE_P(WhoeverDraws, UnseenFrameTest,
                         testing::Values(GlChoice::Cpu, GlChoice::Driver), [](const auto& made) {
                           return made.param == GlChoice::Cpu ? "Cpu" : "Driver";
                         });

} // namespace
} // namespace halvenor
