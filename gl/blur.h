// What a blur made of GPU programs offers to the glow.
#pragma once

#include "gl_calls/gl.h"

namespace halvenor {

/// Every operation, the destructor included, needs the context current that was so at its making.
class Blur {
public:
  Blur() = default;
  virtual ~Blur() = default;
  Blur(const Blur&) = delete;
  Blur& operator=(const Blur&) = delete;

  /// Between these two a quad draws the blur of the bound texture along the offset.
  virtual void StartBlurGeneration() = 0;
  virtual void EndBlurGeneration() = 0;
  /// Between these two a quad draws the bound texture as glow over the picture.
  virtual void StartBlurDrawing() = 0;
  virtual void EndBlurDrawing() = 0;
  /// Direction and width of a blur pass, in texture coordinates (1: the whole texture).
  virtual void SetOffset(float x, float y) = 0;
  virtual void BindTexture(GLuint texture) = 0;
};

} // namespace halvenor
