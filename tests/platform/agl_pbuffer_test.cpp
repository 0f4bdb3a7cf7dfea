// Drawing into offscreen buffers, and from them, on the real EGL.
#include "tests/platform/gl_fixture.h"
#include "tests/stand_ins/agl_behavior.h"

#include <GL/glext.h>

#include <thread>

namespace halvenor {
namespace {

using agl_behavior::ShownPBuffer;

constexpr int kSide = 16;

class PBufferTest : public GlTest {
protected:
  void SetUp() override { ASSERT_TRUE(aglSetCurrentContext(context.context)); }

  void DrawInto(const ShownPBuffer& buffer) const {
    EXPECT_TRUE(aglSetPBuffer(context.context, buffer.pbuffer, 0, 0, 0));
    glViewport(0, 0, kSide, kSide);
  }

  void DrawIntoPort() {
    EXPECT_TRUE(aglSetDrawable(context.context, nullptr));
    EXPECT_TRUE(aglSetDrawable(context.context, &port.port));
    EXPECT_TRUE(aglSetCurrentContext(context.context));
    glViewport(0, 0, 2 * kSide, kSide);
  }

  // Fills the viewport with what was drawn into `buffer`.
  static void Paint(const ShownPBuffer& buffer) {
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, buffer.texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glColor4f(1, 1, 1, 1);
    glBegin(GL_TRIANGLE_STRIP);
    for (const auto& [x, y] : {std::pair{0.0F, 0.0F}, {1.0F, 0.0F}, {0.0F, 1.0F}, {1.0F, 1.0F}}) {
      glTexCoord2f(x, y);
      glVertex3f(2 * x - 1, 2 * y - 1, 0);
    }
    glEnd();
    glDisable(GL_TEXTURE_2D);
  }

  // How many objects of these kinds there are, as far as low names tell.
  static int Objects() {
    int count = 0;
    for (GLuint name = 1; name < 200; ++name)
      count += glIsFramebuffer(name) + glIsRenderbuffer(name) + glIsTexture(name);
    return count;
  }

  OffscreenPort port{2 * kSide, kSide};
  TestContext context{&port.port};
};

TEST_F(PBufferTest, WhatIsDrawnIntoABufferIsReadUprightFromItsTexture) {
  ShownPBuffer buffer(context.context, kSide, kSide);
  FillPixels(0, 0, 2 * kSide, kSide, kWhite);
  DrawInto(buffer);
  DrawQuarters(kSide, kSide);
  GLint bits = 0;
  glGetIntegerv(GL_ALPHA_BITS, &bits);
  EXPECT_EQ(bits, 2);
  glGetIntegerv(GL_BLUE_BITS, &bits);
  EXPECT_EQ(bits, 10) << "feedback leaves a gray in fewer";
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.frames, 0);
  EXPECT_TRUE(aglSetDrawable(context.context, nullptr));
  FillPixels(0, 0, kSide, kSide, kBlack); // into nothing
  DrawIntoPort();
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.image.At(3, 3), kWhite) << "what the port held was drawn over";

  Paint(buffer);
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.frames, 2);
  EXPECT_EQ(QuartersFault(port.image, 0, 0, 2 * kSide, kSide), "");
}

// As in a frame: each buffer in turn takes over what the other holds and adds to it; every frame on
// another thread.
TEST_F(PBufferTest, TwoBuffersHandAPictureOn) {
  ShownPBuffer buffers[] = {ShownPBuffer(context.context), ShownPBuffer(context.context)};
  for (const ShownPBuffer& buffer : buffers) {
    DrawInto(buffer);
    FillPixels(0, 0, kSide, kSide, kBlack);
    aglSwapBuffers(context.context);
  }
  const int objects = Objects();
  const Pixel colors[] = {kRed, kGreen, kBlue, kWhite};
  EXPECT_TRUE(aglSetCurrentContext(nullptr));
  for (int frame = 0; frame < 4; ++frame) {
    std::thread([&, frame] {
      DrawInto(buffers[frame % 2]);
      Paint(buffers[1 - frame % 2]);
      FillPixels(frame * 4, frame, 4, 1, colors[frame]);
      aglSwapBuffers(context.context);
      DrawIntoPort();
      Paint(buffers[frame % 2]);
      aglSwapBuffers(context.context);
      EXPECT_TRUE(aglSetCurrentContext(nullptr));
      EXPECT_EQ(aglGetError(), GLenum{AGL_NO_ERROR});
    }).join();
    EXPECT_EQ(port.frames, frame + 1);
  }
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  EXPECT_EQ(Objects(), objects) << "frames made objects";
  for (int frame = 0; frame < 4; ++frame) {
    EXPECT_EQ(port.image.At(frame * 8, kSide - 1 - frame), colors[frame]) << frame;
    EXPECT_EQ(port.image.At(frame * 8, kSide - 2 - frame), kBlack) << frame;
  }
}

TEST_F(PBufferTest, MisfitsAreRefusedWithTheirError) {
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  const int objects = Objects();
  AGLPbuffer pbuffer = nullptr;
  struct {
    GLint width, height;
    GLenum target, format;
    GLint level;
    GLenum error;
  } const creations[] = {
      {8, 8, GL_TEXTURE_1D, GL_RGBA, 0, AGL_BAD_ENUM},
      {8, 8, GL_TEXTURE_2D, GL_RGB, 0, AGL_BAD_ENUM},
      {0, 8, GL_TEXTURE_2D, GL_RGBA, 0, AGL_BAD_VALUE},
      {8, -1, GL_TEXTURE_2D, GL_RGBA, 0, AGL_BAD_VALUE},
      {8, 8, GL_TEXTURE_2D, GL_RGBA, 1, AGL_BAD_VALUE},
      {limit + 1, 1, GL_TEXTURE_2D, GL_RGBA, 0, AGL_NO_BUFFER},
      {1, limit + 1, GL_TEXTURE_2D, GL_RGBA, 0, AGL_NO_BUFFER},
  };
  for (const auto& c : creations) {
    pbuffer = reinterpret_cast<AGLPbuffer>(this); // anything but null
    EXPECT_FALSE(aglCreatePBuffer(c.width, c.height, c.target, c.format, c.level, &pbuffer));
    EXPECT_EQ(pbuffer, nullptr);
    EXPECT_EQ(aglGetError(), c.error) << c.width << ' ' << c.height << ' ' << c.level;
  }
  EXPECT_EQ(Objects(), objects);

  const AGLContext agl = context.context;
  ASSERT_TRUE(aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer));
  ExpectRefusals({
      {"nowhere", !aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, nullptr), aglGetError(),
       AGL_BAD_VALUE},
      {"no texture", !aglTexImagePBuffer(agl, pbuffer, GL_FRONT), aglGetError(), AGL_BAD_VALUE},
      {"back", !aglTexImagePBuffer(agl, pbuffer, GL_BACK), aglGetError(), AGL_BAD_ENUM},
      {"face", !aglSetPBuffer(agl, pbuffer, 1, 0, 0), aglGetError(), AGL_BAD_VALUE},
      {"level", !aglSetPBuffer(agl, pbuffer, 0, 1, 0), aglGetError(), AGL_BAD_VALUE},
  });
  EXPECT_TRUE(aglSetPBuffer(agl, pbuffer, 0, 0, 0)) << "shown in no texture";
  aglSwapBuffers(agl);
  EXPECT_EQ(port.frames, 0);
  EXPECT_TRUE(aglDestroyPBuffer(pbuffer));
}

TEST_F(PBufferTest, ReleasesLeaveNothing) {
  const int objects = Objects();
  AGLPbuffer pbuffer = nullptr;
  {
    ShownPBuffer shown(context.context);
    ASSERT_TRUE(aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer));
    FillPixels(0, 0, kSide, kSide, kGreen); // into the port still
    EXPECT_TRUE(aglDestroyPBuffer(pbuffer)) << "never shown";
    DrawInto(shown);
    FillPixels(0, 0, kSide, kSide, kRed);
  }
  EXPECT_EQ(Objects(), objects);
  // With its target gone, drawing goes nowhere and is no error.
  FillPixels(0, 0, kSide, kSide, kRed);
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
  DrawIntoPort();
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.image.At(3, 3), kGreen);
}

TEST_F(PBufferTest, ATextureThatCannotShowABufferIsToldAndSurvived) {
  AGLPbuffer pbuffer = nullptr;
  ASSERT_TRUE(aglCreatePBuffer(kSide, kSide, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer));
  GLuint depth = 0;
  glGenTextures(1, &depth);
  glBindTexture(GL_TEXTURE_2D, depth);
  glTexStorage2D(GL_TEXTURE_2D, 1, GL_DEPTH_COMPONENT24, kSide, kSide);
  for (int i = 0; i < 2; ++i) {
    EXPECT_FALSE(aglTexImagePBuffer(context.context, pbuffer, GL_FRONT));
    EXPECT_EQ(aglGetError(), GLenum{AGL_NO_BUFFER});
    ASSERT_TRUE(aglSetPBuffer(context.context, pbuffer, 0, 0, 0));
    FillPixels(0, 0, kSide, kSide, kRed);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    aglSwapBuffers(context.context);
  }
  EXPECT_EQ(port.frames, 0);
  EXPECT_TRUE(aglDestroyPBuffer(pbuffer));
}

TEST_F(PBufferTest, AContextEndsWithABufferAsItsTarget) {
  AGLPbuffer pbuffer = nullptr;
  ASSERT_TRUE(aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer));
  ShownPBuffer shown(context.context);
  DrawInto(shown);
  TestContext second(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(second.context));
  FillPixels(0, 0, 2 * kSide, kSide, kGreen);
  aglSwapBuffers(second.context);
  EXPECT_EQ(port.image.At(3, 3), kGreen);
  second.Destroy();
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  FillPixels(0, 0, kSide, kSide, kBlue);
  DrawIntoPort();
  Paint(shown);
  aglSwapBuffers(context.context);
  EXPECT_EQ(port.image.At(3, 3), kBlue) << "the target outlasts another context's turn";
  EXPECT_TRUE(aglDestroyPBuffer(pbuffer));
  DrawInto(shown);
}

} // namespace
} // namespace halvenor
