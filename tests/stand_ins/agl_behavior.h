// What every context layer behind platform/agl.h has to do: the real one and the stand-in run the
// same cases, so that they cannot drift apart. Including this file adds the cases to a suite, once.
#pragma once

#include "tests/platform/gl_fixture.h"

#include <set>
#include <thread>

namespace halvenor::agl_behavior {

class AglBehavior : public GlTest {
protected:
  /// How many frames a swap hands over.
  int Swap() {
    const int before = port.frames;
    aglSwapBuffers(context.context);
    return port.frames - before;
  }

  OffscreenPort port{40, 30};
  TestContext context{&port.port};
};

/// A pbuffer of the current context with the texture that shows it, gone at the end of its scope,
/// where the context has to be current.
class ShownPBuffer {
public:
  explicit ShownPBuffer(AGLContext context, GLint width = 16, GLint height = 16) {
    EXPECT_TRUE(aglCreatePBuffer(width, height, GL_TEXTURE_2D, GL_RGBA, 0, &pbuffer));
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    EXPECT_TRUE(aglTexImagePBuffer(context, pbuffer, GL_FRONT));
  }
  ~ShownPBuffer() { Destroy(); }
  ShownPBuffer(const ShownPBuffer&) = delete;
  ShownPBuffer& operator=(const ShownPBuffer&) = delete;

  void Destroy() {
    if (pbuffer == nullptr) return;
    EXPECT_TRUE(aglDestroyPBuffer(std::exchange(pbuffer, nullptr)));
    glDeleteTextures(1, &texture);
  }

  AGLPbuffer pbuffer = nullptr;
  GLuint texture = 0;
};

TEST_F(AglBehavior, WhatIsNotThereOrNotCurrentIsRefused) {
  AGLPbuffer made = nullptr;
  // Braces: from left to right, and each call before its error is read.
  ExpectRefusals({
      {"format", aglCreateContext(nullptr, nullptr) == nullptr, aglGetError(), AGL_BAD_PIXELFORMAT},
      {"destroy", !aglDestroyContext(nullptr), aglGetError(), AGL_BAD_CONTEXT},
      {"enable", !aglEnable(nullptr, AGL_BUFFER_RECT), aglGetError(), AGL_BAD_CONTEXT},
      {"draw", !aglSetDrawable(nullptr, &port.port), aglGetError(), AGL_BAD_CONTEXT},
      {"update", !aglUpdateContext(nullptr), aglGetError(), AGL_BAD_CONTEXT},
      {"swap", Swap() == 0, aglGetError(), AGL_BAD_CONTEXT},
      {"font", !aglUseFont(context.context, 1, 0, 9, 0, 256, 1), aglGetError(), AGL_BAD_CONTEXT},
      {"pbuffer", !aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, &made), aglGetError(),
       AGL_BAD_CONTEXT},
  });
  const TestContext other(&port.port);
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  const ShownPBuffer shown(context.context);
  ExpectRefusals({
      {"show nothing", !aglTexImagePBuffer(context.context, nullptr, GL_FRONT), aglGetError(),
       AGL_BAD_VALUE},
      {"target", !aglSetPBuffer(context.context, nullptr, 0, 0, 0), aglGetError(), AGL_BAD_VALUE},
      {"its context", !aglSetPBuffer(nullptr, shown.pbuffer, 0, 0, 0), aglGetError(),
       AGL_BAD_CONTEXT},
      {"another's", !aglSetPBuffer(other.context, shown.pbuffer, 0, 0, 0), aglGetError(),
       AGL_BAD_CONTEXT},
      {"end of none", !aglDestroyPBuffer(nullptr), aglGetError(), AGL_BAD_VALUE},
      {"end elsewhere", (aglSetCurrentContext(nullptr), !aglDestroyPBuffer(shown.pbuffer)),
       aglGetError(), AGL_BAD_CONTEXT},
  });
  ASSERT_TRUE(aglSetCurrentContext(context.context));
}

TEST_F(AglBehavior, TheFirstErrorStaysUntilItsOwnThreadReadsIt) {
  aglSetDrawable(nullptr, &port.port);
  aglDestroyPBuffer(nullptr);
  aglCreateContext(nullptr, nullptr);
  std::thread([] { EXPECT_EQ(aglGetError(), GLenum{AGL_NO_ERROR}); }).join();
  EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_CONTEXT});
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_ERROR});
}

TEST_F(AglBehavior, EveryCodeHasATextOfItsOwn) {
  std::set<std::string> texts = {"", ErrorText(AGL_NO_ERROR), ErrorText(4711)};
  for (GLenum code = AGL_BAD_ATTRIBUTE; code <= AGL_NO_BUFFER; ++code)
    texts.insert(ErrorText(code));
  EXPECT_EQ(texts.size(), std::size_t{AGL_NO_BUFFER - AGL_BAD_ATTRIBUTE + 1 + 3});
}

TEST_F(AglBehavior, ASwapHandsOverOneFrameOfThePortsSize) {
  const auto expectFrame = [this](int width, int height) {
    EXPECT_EQ(Swap(), 1);
    EXPECT_EQ(port.image.width, width);
    EXPECT_EQ(port.image.height, height);
  };
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  expectFrame(40, 30);
  EXPECT_TRUE(aglSetDrawable(context.context, nullptr));
  EXPECT_EQ(Swap(), 0);
  EXPECT_TRUE(aglSetDrawable(context.context, &port.port));
  expectFrame(40, 30);
  port.port.bounds = MakeRect(50, 7);
  EXPECT_TRUE(aglUpdateContext(context.context));
  expectFrame(50, 7);
  // A rectangle within the port does not change what the port gets.
  context.SetRect(1, 2, 20, 3);
  EXPECT_TRUE(aglUpdateContext(context.context));
  expectFrame(50, 7);
  port.port.frameFinished = nullptr;
  EXPECT_EQ(Swap(), 0);
}

TEST_F(AglBehavior, OnlyTheAttachedPortIsShown) {
  ASSERT_TRUE(aglSetCurrentContext(context.context));
  ShownPBuffer buffers[] = {ShownPBuffer(context.context), ShownPBuffer(context.context)};
  EXPECT_EQ(Swap(), 1) << "making pbuffers does not direct drawing to them";
  const GLint screen = aglGetVirtualScreen(context.context);
  for (int frame = 0; frame < 4; ++frame) {
    EXPECT_TRUE(aglSetPBuffer(context.context, buffers[frame % 2].pbuffer, 0, 0, screen));
    EXPECT_EQ(Swap(), 0);
    EXPECT_TRUE(aglSetCurrentContext(context.context));
    EXPECT_TRUE(aglUpdateContext(context.context));
    EXPECT_EQ(Swap(), 0) << "still the pbuffer";
    EXPECT_TRUE(aglSetDrawable(context.context, nullptr));
    EXPECT_EQ(Swap(), 0);
    EXPECT_TRUE(aglSetDrawable(context.context, &port.port));
    EXPECT_EQ(Swap(), 1);
  }

  // Handed over between threads at each kind of target.
  EXPECT_TRUE(aglSetPBuffer(context.context, buffers[0].pbuffer, 0, 0, 0));
  EXPECT_TRUE(aglSetCurrentContext(nullptr));
  std::thread([&] {
    EXPECT_TRUE(aglSetCurrentContext(context.context));
    EXPECT_EQ(Swap(), 0) << "the target goes with the context";
    EXPECT_TRUE(aglSetDrawable(context.context, &port.port));
    EXPECT_TRUE(aglSetCurrentContext(nullptr));
  }).join();
  EXPECT_TRUE(aglSetPBuffer(context.context, buffers[1].pbuffer, 0, 0, 0)) << "makes it current";
  EXPECT_EQ(Swap(), 0);
  buffers[1].Destroy();
  EXPECT_TRUE(aglSetCurrentContext(context.context));
  EXPECT_EQ(Swap(), 0) << "not the port by itself";
  EXPECT_TRUE(aglSetPBuffer(context.context, buffers[0].pbuffer, 0, 0, 0)) << "the other goes on";
  EXPECT_TRUE(aglSetCurrentContext(nullptr));
  EXPECT_TRUE(aglSetDrawable(context.context, &port.port));
  EXPECT_TRUE(aglSetCurrentContext(context.context));
  EXPECT_EQ(Swap(), 1);
}

} // namespace halvenor::agl_behavior
