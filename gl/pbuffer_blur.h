// The glow: a blurred copy of the finished frame, added over the picture.
#pragma once

#include "gl/blur.h"
#include "gl/pbuffer.h"

#include <memory>

namespace halvenor {

/// The feedback pair with a second pair of the same size for the blur. With the ARB program
/// extensions it blurs in two directions, twice; without them it adds shifted copies.
/// `GenerateBlur` and `DrawBlur` need identity matrices, and do nothing while it is not created or
/// a blur buffer is missing. As with `PBuffer`, the owner calls `Destroy` while the context exists.
class PBufferBlur : public PBuffer {
public:
  /// Makes the feedback pair, chooses the implementation for `newContext` and makes the blur pair.
  void Create(AGLContext newContext);

  /// Releases both pairs and the programs.
  void Destroy();

  /// Blurs the frame completed last. Leaves the context drawing into a blur buffer, blending on.
  void GenerateBlur();

  /// Adds the blur to what the context draws into. Leaves texturing on and additive blending.
  void DrawBlur();

  /// The bound texture as one quad over the viewport, shifted by (dx, dy); 2 is its whole size.
  void DrawTexture(float dx, float dy) const;

private:
  [[nodiscard]] bool CanBlur() const;
  void BlurWithPrograms();
  void BlurWithCopies();
  void DrawCopies(float spread) const;

  Buffer blurBuffers[2]; ///< the blur ends in the first one
  std::unique_ptr<Blur> blurShaders;
};

} // namespace halvenor
