// Mesa's software renderer without a display server: what judges the pixels of raster/.
#pragma once

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <array>
#include <cstdint>
#include <vector>

namespace halvenor {

/// Names that live as long as their context.
struct Framebuffer {
  GLuint texture;
  GLuint framebuffer;
};
/// Makes one in the current context, black and bound.
Framebuffer MakeFramebuffer(GLint format, int width, int height);

/// What the bound framebuffer shows: RGBA, bottom row first.
std::vector<std::uint8_t> ReadPixels(int width, int height);

/// A compatibility context, current on this thread, that draws into an image of RGBA bytes. A
/// machine without one fails the case, and so does an error that is left.
class Mesa {
public:
  Mesa(int width, int height);
  ~Mesa();
  Mesa(const Mesa&) = delete;
  Mesa& operator=(const Mesa&) = delete;

private:
  void* display_;
  void* context_;
};

} // namespace halvenor
