// Reads finished pictures into memory.
#pragma once

#include "platform/presenter.h"

namespace halvenor::agl {

/// Fills frames of the port's size with pictures. It remembers what the last frame held, so that
/// black is only written where a picture no longer reaches.
class FrameReader {
public:
  /// Writes `picture` to `frame`, which has room for `picture.port`, and waits until that is done.
  /// Rows follow each other without gaps, in either direction.
  void Read(const Picture& picture, const Pixels& frame);

private:
  const std::uint8_t* frame_ = nullptr;
  Size frameSize_;
  VisiblePart held_;
};

} // namespace halvenor::agl
