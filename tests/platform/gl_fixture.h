// What the suites of context layers share: a context with the plug-in's format on a port, and a
// fixture that fails on whatever error a case leaves pending.
#pragma once

#include "gl_calls/gl.h"
#include "platform/agl.h"
#include "tests/support/log_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace halvenor {

using Pixel = std::array<int, 3>;
inline constexpr Pixel kBlack = {0, 0, 0};
inline constexpr Pixel kRed = {255, 0, 0};
inline constexpr Pixel kGreen = {0, 255, 0};
inline constexpr Pixel kBlue = {0, 0, 255};
inline constexpr Pixel kWhite = {255, 255, 255};

/// Fails a case that leaves a GL or AGL error pending; collects the debug log.
class GlTest : public testing::Test {
protected:
  void TearDown() override { EXPECT_EQ(aglGetError(), static_cast<GLenum>(AGL_NO_ERROR)); }

  LogLines log;
};

inline std::string ErrorText(GLenum code) {
  return reinterpret_cast<const char*>(aglErrorString(code));
}

struct Refusal {
  const char* what;
  bool refused;
  GLenum error, expected;
};
inline void ExpectRefusals(const std::vector<Refusal>& refusals) {
  for (const Refusal& one : refusals) {
    EXPECT_TRUE(one.refused) << one.what;
    EXPECT_EQ(one.error, one.expected) << one.what << ": " << ErrorText(one.error);
  }
}

/// A context with the format that the plug-in asks for, destroyed at the end of its scope.
class TestContext {
public:
  explicit TestContext(GrafPtr port) {
    const GLint attributes[] = {
        AGL_RGBA, AGL_DOUBLEBUFFER,   AGL_RED_SIZE,    8,       AGL_ALPHA_SIZE, 8, AGL_DEPTH_SIZE,
        24,       AGL_CLOSEST_POLICY, AGL_NO_RECOVERY, AGL_NONE};
    const AGLPixelFormat format = aglChoosePixelFormat(nullptr, 0, attributes);
    context = aglCreateContext(format, nullptr);
    aglDestroyPixelFormat(format);
    EXPECT_TRUE(aglSetDrawable(context, port));
  }
  ~TestContext() { Destroy(); }
  TestContext(const TestContext&) = delete;
  TestContext& operator=(const TestContext&) = delete;

  void Destroy() {
    if (context == nullptr) return;
    if (aglSetCurrentContext(context)) {
      EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    } else {
      aglGetError(); // The case has seen it.
    }
    EXPECT_TRUE(aglDestroyContext(std::exchange(context, nullptr)));
  }

  void SetRect(GLint x, GLint y, GLint width, GLint height) const {
    const GLint values[] = {x, y, width, height};
    EXPECT_TRUE(aglSetInteger(context, AGL_BUFFER_RECT, values));
    EXPECT_TRUE(aglEnable(context, AGL_BUFFER_RECT));
  }

  AGLContext context = nullptr;
};

inline void FillPixels(GLint x, GLint y, GLsizei width, GLsizei height, const Pixel& color) {
  glEnable(GL_SCISSOR_TEST);
  glScissor(x, y, width, height);
  glClearColor(static_cast<float>(color[0]) / 255.0F, static_cast<float>(color[1]) / 255.0F,
               static_cast<float>(color[2]) / 255.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  glDisable(GL_SCISSOR_TEST);
}

/// Each quarter in a color of its own: red and green above, blue and white below. Leaves drawing
/// confined to the last, which must not confine what is shown.
inline void DrawQuarters(GLsizei width, GLsizei height) {
  const GLsizei x = width / 2;
  const GLsizei y = height / 2;
  FillPixels(0, y, x, height - y, kRed);
  FillPixels(x, y, width - x, height - y, kGreen);
  FillPixels(0, 0, x, y, kBlue);
  FillPixels(x, 0, width - x, y, kWhite);
  glEnable(GL_SCISSOR_TEST);
}

inline Rect MakeRect(int width, int height) {
  return {0, 0, static_cast<std::int16_t>(height), static_cast<std::int16_t>(width)};
}

/// A picture, top row first.
struct Image {
  int width = 0;
  int height = 0;
  std::vector<Pixel> pixels;

  [[nodiscard]] Pixel At(int x, int y) const {
    return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                     static_cast<std::size_t>(x));
  }
};

/// What is wrong with the quarters of `DrawQuarters` in the rectangle of `image` whose top-left
/// corner is `left`, `top`, or with the black around it; empty when nothing is.
inline std::string QuartersFault(const Image& image, int left, int top, int width, int height) {
  std::ostringstream fault;
  const auto expect = [&](int x, int y, const Pixel& color) {
    if (x < 0 || y < 0 || x >= image.width || y >= image.height) return;
    const Pixel found = image.At(x, y);
    if (found != color)
      fault << x << "," << y << " of " << image.width << "x" << image.height << " is "
            << testing::PrintToString(found) << ", not " << testing::PrintToString(color) << "; ";
  };
  const int right = left + width - 1;
  const int bottom = top + height - 1;
  expect(left, top, kRed);
  expect(right, top, kGreen);
  expect(left, bottom, kBlue);
  expect(right, bottom, kWhite);
  expect(left - 1, top, kBlack);
  expect(left, top - 1, kBlack);
  expect(right + 1, bottom, kBlack);
  expect(right, bottom + 1, kBlack);
  return fault.str();
}

/// An offscreen port that keeps the last frame.
class OffscreenPort {
public:
  OffscreenPort(int width, int height) {
    port.kind = kHalvenorPortOffscreen;
    port.bounds = MakeRect(width, height);
    port.frameRefCon = this;
    port.frameFinished = [](void* self, const HalvenorFrame* frame) {
      static_cast<OffscreenPort*>(self)->Receive(*frame);
    };
  }

  HalvenorPort port{};
  Image image;
  const std::uint8_t* topRow = nullptr; ///< where the last frame lay
  int frames = 0;

private:
  void Receive(const HalvenorFrame& frame) {
    ++frames;
    topRow = frame.topRow;
    image = {frame.width, frame.height, {}};
    for (int y = 0; y < frame.height; ++y) {
      const std::uint8_t* row = frame.topRow + y * frame.stride;
      for (int x = 0; x < frame.width; ++x)
        image.pixels.push_back({row[x * 4], row[x * 4 + 1], row[x * 4 + 2]});
    }
  }
};

/// Memory of a host for the frames of a port, with room around each row.
class HostMemory {
public:
  explicit HostMemory(OffscreenPort& port)
      : width_(port.port.bounds.right), height_(port.port.bounds.bottom),
        bytes_(Stride() * static_cast<std::size_t>(height_ + 2), kUntouched) {
    port.port.destination = Row(0);
    port.port.destinationStride = static_cast<std::ptrdiff_t>(Stride());
  }

  /// Rows from the bottom up.
  void TurnOver(OffscreenPort& port) {
    port.port.destination = Row(height_ - 1);
    port.port.destinationStride = -static_cast<std::ptrdiff_t>(Stride());
    turned_ = true;
  }

  [[nodiscard]] Pixel At(int x, int y) {
    const std::uint8_t* const pixel = Row(turned_ ? height_ - 1 - y : y) + std::ptrdiff_t{4} * x;
    return {pixel[0], pixel[1], pixel[2]};
  }

  /// How many bytes around the picture were written to.
  [[nodiscard]] std::ptrdiff_t Trespasses() const {
    const auto untouched = std::count(bytes_.begin(), bytes_.end(), kUntouched);
    return static_cast<std::ptrdiff_t>(bytes_.size()) - untouched -
           std::ptrdiff_t{4} * width_ * height_;
  }

private:
  static constexpr std::uint8_t kUntouched = 0x5a;
  [[nodiscard]] std::size_t Stride() const { return static_cast<std::size_t>(4 * width_ + 20); }
  std::uint8_t* Row(int y) {
    return bytes_.data() + Stride() * static_cast<std::size_t>(y + 1) + 8;
  }

  int width_;
  int height_;
  std::vector<std::uint8_t> bytes_;
  bool turned_ = false;
};

} // namespace halvenor
