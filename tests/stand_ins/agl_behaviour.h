// What every context layer behind platform/agl.h has to do: the real one and the stand-in run the
// same cases, so that they cannot drift apart. Including this file adds the cases to a suite, once.
//
// Needs nothing but a context that can be made for an offscreen port.
#pragma once

#include "platform/agl.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace halvenor::agl_behaviour {

inline constexpr GLint kAttributes[] = {
    AGL_RGBA, AGL_DOUBLEBUFFER,   AGL_RED_SIZE,    8,       AGL_ALPHA_SIZE, 8, AGL_DEPTH_SIZE,
    24,       AGL_CLOSEST_POLICY, AGL_NO_RECOVERY, AGL_NONE};

/// A context on an offscreen port that notes the frames it gets.
class AglBehaviour : public testing::Test {
protected:
  struct Size {
    int width;
    int height;
    bool operator==(const Size&) const = default;
  };

  void SetUp() override {
    (void)aglGetError();
    port_.kind = kHalvenorPortOffscreen;
    port_.bounds = {0, 0, 30, 40};
    port_.frameRefCon = &frames_;
    port_.frameFinished = [](void* frames, const HalvenorFrame* frame) {
      // Touches what the frame promises to be.
      const std::uint8_t* last = frame->topRow + (frame->height - 1) * frame->stride;
      sum_ += frame->topRow[0] + last[frame->width * 4 - 1];
      static_cast<std::vector<Size>*>(frames)->push_back({frame->width, frame->height});
    };
    format_ = aglChoosePixelFormat(nullptr, 0, kAttributes);
    ASSERT_NE(format_, nullptr);
    context_ = aglCreateContext(format_, nullptr);
    ASSERT_NE(context_, nullptr);
    const GLint name = 1;
    EXPECT_TRUE(aglSetInteger(context_, AGL_BUFFER_NAME, &name));
    EXPECT_TRUE(aglSetDrawable(context_, &port_));
    ASSERT_EQ(aglGetError(), GLenum{AGL_NO_ERROR});
  }

  void TearDown() override {
    EXPECT_TRUE(aglSetCurrentContext(nullptr));
    if (context_ != nullptr) {
      EXPECT_TRUE(aglDestroyContext(context_));
    }
    aglDestroyPixelFormat(format_);
    EXPECT_EQ(aglGetError(), GLenum{AGL_NO_ERROR}) << "left over by a successful call";
  }

  static std::string Text(GLenum code) {
    return reinterpret_cast<const char*>(aglErrorString(code));
  }

  struct Refusal {
    const char* what;
    bool refused;
    GLenum error, expected;
  };
  static void ExpectRefusals(const std::vector<Refusal>& refusals) {
    for (const Refusal& one : refusals) {
      EXPECT_TRUE(one.refused) << one.what;
      EXPECT_EQ(one.error, one.expected) << one.what << ": " << Text(one.error);
    }
  }

  AGLPixelFormat format_ = nullptr;
  AGLContext context_ = nullptr;
  HalvenorPort port_{};
  std::vector<Size> frames_;
  static inline int sum_ = 0;
};

TEST_F(AglBehaviour, MisfitsAreRefusedWithTheirError) {
  const GLint unknown[] = {AGL_RGBA, 4711, AGL_NONE};
  const GLint values[4] = {0, 0, 10, 10};
  const GLint negative[4] = {0, 0, 10, -1};
  HalvenorPort window{};
  window.kind = kHalvenorPortX11Window;
  // Braces: from left to right, and each call before its error is read.
  ExpectRefusals({
      {"attribute", aglChoosePixelFormat(nullptr, 0, unknown) == nullptr, aglGetError(),
       AGL_BAD_ATTRIBUTE},
      {"format", aglCreateContext(nullptr, nullptr) == nullptr, aglGetError(), AGL_BAD_PIXELFORMAT},
      {"share", aglCreateContext(format_, context_) == nullptr, aglGetError(), AGL_BAD_CONTEXT},
      {"destroy null", !aglDestroyContext(nullptr), aglGetError(), AGL_BAD_CONTEXT},
      {"set null", !aglSetInteger(nullptr, AGL_BUFFER_RECT, values), aglGetError(),
       AGL_BAD_CONTEXT},
      {"enable null", !aglEnable(nullptr, AGL_BUFFER_RECT), aglGetError(), AGL_BAD_CONTEXT},
      {"draw null", !aglSetDrawable(nullptr, &port_), aglGetError(), AGL_BAD_CONTEXT},
      {"update null", !aglUpdateContext(nullptr), aglGetError(), AGL_BAD_CONTEXT},
      {"set unknown", !aglSetInteger(context_, 4711, values), aglGetError(), AGL_BAD_ENUM},
      {"enable unknown", !aglEnable(context_, 4711), aglGetError(), AGL_BAD_ENUM},
      {"set nothing", !aglSetInteger(context_, AGL_BUFFER_RECT, nullptr), aglGetError(),
       AGL_BAD_VALUE},
      {"set a negative size", !aglSetInteger(context_, AGL_BUFFER_RECT, negative), aglGetError(),
       AGL_BAD_VALUE},
      {"no window", !aglSetDrawable(context_, &window), aglGetError(), AGL_BAD_DRAWABLE},
      {"swap elsewhere", (aglSwapBuffers(context_), true), aglGetError(), AGL_BAD_CONTEXT},
      {"font elsewhere", !aglUseFont(context_, 1, 0, 9, 0, 256, 1), aglGetError(), AGL_BAD_CONTEXT},
  });
  EXPECT_TRUE(frames_.empty());
}

TEST_F(AglBehaviour, TheFirstErrorStaysUntilItsOwnThreadReadsIt) {
  aglSetDrawable(nullptr, &port_);
  aglSetInteger(context_, 4711, nullptr);
  std::thread([] { EXPECT_EQ(aglGetError(), GLenum{AGL_NO_ERROR}); }).join();
  EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_CONTEXT});
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_ERROR});
}

TEST_F(AglBehaviour, EveryCodeHasATextOfItsOwn) {
  std::set<std::string> texts = {"", Text(AGL_NO_ERROR), Text(4711)};
  for (GLenum code = AGL_BAD_ATTRIBUTE; code <= AGL_NO_BUFFER; ++code)
    texts.insert(Text(code));
  EXPECT_EQ(texts.size(), std::size_t{AGL_NO_BUFFER - AGL_BAD_ATTRIBUTE + 1 + 3});
}

TEST_F(AglBehaviour, ASwapHandsOverOneFrameOfThePortsSize) {
  ASSERT_TRUE(aglSetCurrentContext(context_));
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(aglSetDrawable(context_, nullptr));
    EXPECT_TRUE(aglSetDrawable(context_, &port_));
    EXPECT_TRUE(aglSetCurrentContext(context_));
    aglSwapBuffers(context_);
  }
  port_.bounds = {0, 0, 7, 50};
  EXPECT_TRUE(aglUpdateContext(context_));
  aglSwapBuffers(context_);
  // A rectangle within the port does not change what the port gets.
  const GLint rect[] = {1, 2, 20, 3};
  EXPECT_TRUE(aglSetInteger(context_, AGL_BUFFER_RECT, rect));
  EXPECT_TRUE(aglEnable(context_, AGL_BUFFER_RECT));
  EXPECT_TRUE(aglUpdateContext(context_));
  aglSwapBuffers(context_);
  EXPECT_EQ(frames_, (std::vector<Size>{{40, 30}, {40, 30}, {50, 7}, {50, 7}}));

  port_.frameFinished = nullptr;
  aglSwapBuffers(context_);
  EXPECT_EQ(frames_.size(), 4U);
  EXPECT_EQ(aglGetError(), GLenum{AGL_NO_ERROR});
}

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

TEST_F(AglBehaviour, MisfittingPBuffersAreRefusedWithTheirError) {
  AGLPbuffer none = nullptr;
  EXPECT_FALSE(aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, &none));
  EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_CONTEXT}) << "with nothing current";
  // The texture that is bound here goes with its context.
  AGLContext second = aglCreateContext(format_, nullptr);
  ASSERT_TRUE(aglSetCurrentContext(second));
  GLuint texture = 0;
  glGenTextures(1, &texture);
  glBindTexture(GL_TEXTURE_2D, texture);
  EXPECT_TRUE(aglDestroyContext(second));
  ASSERT_TRUE(aglSetCurrentContext(context_));

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
      {1 << 20, 8, GL_TEXTURE_2D, GL_RGBA, 0, AGL_NO_BUFFER},
      {8, 1 << 20, GL_TEXTURE_2D, GL_RGBA, 0, AGL_NO_BUFFER},
  };
  for (const auto& c : creations) {
    none = reinterpret_cast<AGLPbuffer>(this); // anything but null
    EXPECT_FALSE(aglCreatePBuffer(c.width, c.height, c.target, c.format, c.level, &none));
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(aglGetError(), c.error) << c.width << ' ' << c.height << ' ' << c.level;
  }
  EXPECT_FALSE(aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, nullptr));
  EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_VALUE});

  AGLPbuffer hidden = nullptr;
  ASSERT_TRUE(aglCreatePBuffer(8, 8, GL_TEXTURE_2D, GL_RGBA, 0, &hidden));
  EXPECT_FALSE(aglTexImagePBuffer(context_, hidden, GL_FRONT));
  EXPECT_EQ(aglGetError(), GLenum{AGL_BAD_VALUE}) << "no texture is bound";
  ShownPBuffer shown(context_);
  second = aglCreateContext(format_, nullptr);
  ExpectRefusals({
      {"back", !aglTexImagePBuffer(context_, hidden, GL_BACK), aglGetError(), AGL_BAD_ENUM},
      {"texture of null", !aglTexImagePBuffer(context_, nullptr, GL_FRONT), aglGetError(),
       AGL_BAD_VALUE},
      {"null", !aglSetPBuffer(context_, nullptr, 0, 0, 0), aglGetError(), AGL_BAD_VALUE},
      {"null context", !aglSetPBuffer(nullptr, shown.pbuffer, 0, 0, 0), aglGetError(),
       AGL_BAD_CONTEXT},
      {"other context", !aglSetPBuffer(second, shown.pbuffer, 0, 0, 0), aglGetError(),
       AGL_BAD_CONTEXT},
      {"face", !aglSetPBuffer(context_, shown.pbuffer, 1, 0, 0), aglGetError(), AGL_BAD_VALUE},
      {"level", !aglSetPBuffer(context_, shown.pbuffer, 0, 1, 0), aglGetError(), AGL_BAD_VALUE},
      {"destroy null", !aglDestroyPBuffer(nullptr), aglGetError(), AGL_BAD_VALUE},
      {"destroy elsewhere", (aglSetCurrentContext(nullptr), !aglDestroyPBuffer(shown.pbuffer)),
       aglGetError(), AGL_BAD_CONTEXT},
  });
  ASSERT_TRUE(aglSetCurrentContext(context_));
  EXPECT_TRUE(aglSetPBuffer(context_, hidden, 0, 0, 0)) << "shown in no texture";
  aglSwapBuffers(context_);
  EXPECT_TRUE(frames_.empty());
  EXPECT_TRUE(aglDestroyPBuffer(hidden));
  shown.Destroy();
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
  EXPECT_TRUE(aglDestroyContext(second));
}

TEST_F(AglBehaviour, OnlyTheAttachedPortIsShown) {
  ASSERT_TRUE(aglSetCurrentContext(context_));
  ShownPBuffer buffers[] = {ShownPBuffer(context_), ShownPBuffer(context_)};
  const auto swap = [this] {
    aglSwapBuffers(context_);
    return std::exchange(frames_, {}).size();
  };
  EXPECT_EQ(swap(), 1U) << "making pbuffers does not direct drawing to them";
  const GLint screen = aglGetVirtualScreen(context_);
  for (int frame = 0; frame < 4; ++frame) {
    EXPECT_TRUE(aglSetPBuffer(context_, buffers[frame % 2].pbuffer, 0, 0, screen));
    EXPECT_EQ(swap(), 0U);
    EXPECT_TRUE(aglSetCurrentContext(context_));
    EXPECT_TRUE(aglUpdateContext(context_));
    EXPECT_EQ(swap(), 0U) << "still the pbuffer";
    EXPECT_TRUE(aglSetDrawable(context_, nullptr));
    EXPECT_EQ(swap(), 0U);
    EXPECT_TRUE(aglSetDrawable(context_, &port_));
    EXPECT_EQ(swap(), 1U);
  }

  // Handed over between threads at each kind of target.
  EXPECT_TRUE(aglSetPBuffer(context_, buffers[0].pbuffer, 0, 0, 0));
  EXPECT_TRUE(aglSetCurrentContext(nullptr));
  std::thread([&] {
    EXPECT_TRUE(aglSetCurrentContext(context_));
    EXPECT_EQ(swap(), 0U) << "the target goes with the context";
    EXPECT_TRUE(aglSetDrawable(context_, &port_));
    EXPECT_TRUE(aglSetCurrentContext(nullptr));
  }).join();
  EXPECT_TRUE(aglSetPBuffer(context_, buffers[1].pbuffer, 0, 0, 0)) << "makes it current";
  EXPECT_EQ(swap(), 0U);
  EXPECT_TRUE(aglSetCurrentContext(nullptr));
  EXPECT_TRUE(aglSetDrawable(context_, &port_));
  EXPECT_TRUE(aglSetCurrentContext(context_));
  EXPECT_EQ(swap(), 1U);

  EXPECT_TRUE(aglSetPBuffer(context_, buffers[1].pbuffer, 0, 0, 0));
  buffers[1].Destroy();
  EXPECT_TRUE(aglSetCurrentContext(context_));
  EXPECT_EQ(swap(), 0U) << "not the port by itself";
  EXPECT_TRUE(aglSetPBuffer(context_, buffers[0].pbuffer, 0, 0, 0)) << "the other one goes on";
  EXPECT_EQ(swap(), 0U);
  EXPECT_TRUE(aglSetDrawable(context_, &port_));
  EXPECT_EQ(swap(), 1U);
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(AglBehaviour, AFontFillsListsWithinItsLimits) {
  ASSERT_TRUE(aglSetCurrentContext(context_));
  std::int16_t family = 0;
  GetFNum(reinterpret_cast<const unsigned char*>("\x09Helvetica"), &family);
  ASSERT_NE(family, 0) << "no font is installed";
  const GLuint lists = glGenLists(256);
  ASSERT_NE(lists, 0U);
  const auto base = static_cast<GLint>(lists);
  for (const GLint size : {1, 9, 512}) {
    EXPECT_TRUE(aglUseFont(context_, family, 0, size, 'A', 2, base)) << size;
  }
  struct {
    GLint family, style, size, first, count, base;
    GLenum error;
  } const refused[] = {
      {family, 0, -5, 0, 256, base, AGL_BAD_FONT},
      {family, 0, 0, 0, 256, base, AGL_BAD_FONT},
      {family, 0, 513, 0, 256, base, AGL_BAD_FONT},
      {family, 0, 1'000'000'000, 0, 256, base, AGL_BAD_FONT},
      {family, 1, 9, 0, 256, base, AGL_BAD_FONT},
      {0, 0, 9, 0, 256, base, AGL_BAD_FONT},
      {-1, 0, 9, 0, 256, base, AGL_BAD_FONT},
      {32767, 0, 9, 0, 256, base, AGL_BAD_FONT},
      {family, 0, 9, -1, 2, base, AGL_BAD_VALUE},
      {family, 0, 9, 255, 2, base, AGL_BAD_VALUE},
      {family, 0, 9, 0, -1, base, AGL_BAD_VALUE},
      {family, 0, 9, 0, 256, 0, AGL_BAD_VALUE},
  };
  for (const auto& c : refused) {
    EXPECT_FALSE(aglUseFont(context_, c.family, c.style, c.size, c.first, c.count, c.base));
    EXPECT_EQ(aglGetError(), c.error) << c.size << ' ' << c.first << ' ' << c.count;
  }
  glDeleteLists(lists, 256);
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

} // namespace halvenor::agl_behaviour
