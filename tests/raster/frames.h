// Frames as the plug-in draws them, through any table of OpenGL's functions: the pictures of the
// CPU's and of a driver's beside each other.
#pragma once

#include "gl_calls/gl_table.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace halvenor {

/// What frames need beside the table. Pictures 0 and 1 are the trails, 2 and 3 the glow's, all
/// `kTrailSize` wide and high; 4 is the window.
struct FrameApi {
  const gl_calls::Table& gl;
  std::function<void(int picture)> bind;
  unsigned textures[4] = {};
};
inline constexpr int kTrailSize = 256;
inline constexpr int kNumPictures = 5;

struct FrameLook {
  float fade = 0.1F;
  float growth = 0.03F;
  int copies = 2;
  int passes = 8;
  bool glow = true;
  bool vertical = false;
  bool overlay = true;
};

/// Loads the four programs (their names follow each other) and sets what all frames share.
void PrepareFrames(FrameApi& api);
/// Draws frame `number` into the window, whose size is given.
void DrawFrame(FrameApi& api, const FrameLook& look, int number, int width, int height);

} // namespace halvenor
