// Reads finished pictures into memory.
#pragma once

#include "platform/presenter.h"

#include <cstdint>

namespace halvenor::agl {

/// Fills one frame of the port's size, without gaps between rows, with pictures. It remembers what
/// the frame holds, so that black is only written where a picture no longer reaches.
class FrameReader {
public:
  enum class Layout {
    RgbaBottomRowFirst, ///< bytes R, G, B, A
    BgraTopRowFirst,    ///< 32-bit words 0xAARRGGBB; needs `CanInvert`
  };

  explicit FrameReader(Layout layout) : layout_(layout) {}

  /// Whether the current context can read the top row first.
  static bool CanInvert();

  /// Reads `picture` into `frame`, `picture.port` pixels of 4 bytes, which must be the frame of the
  /// call before unless its size differs. Waits until the picture is finished.
  void Read(const Picture& picture, std::uint8_t* frame);

private:
  Layout layout_;
  Size frameSize_;
  VisiblePart held_;
};

} // namespace halvenor::agl
