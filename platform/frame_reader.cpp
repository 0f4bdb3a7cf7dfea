#include "platform/frame_reader.h"

#include <cstddef>
#include <cstring>

namespace halvenor::agl {

void FrameReader::Read(const Picture& picture, const Pixels& frame) {
  const VisiblePart part = ClipToPort(picture);
  const bool coversAll = part.size == picture.port;
  if (!coversAll && (frame.topRow != frame_ || picture.port != frameSize_ || part != held_)) {
    for (GLsizei row = 0; row < picture.port.height; ++row)
      std::memset(frame.topRow + frame.stride * row, 0,
                  static_cast<std::size_t>(picture.port.width) * 4);
  }
  frame_ = frame.topRow;
  frameSize_ = picture.port;
  held_ = part;
  if (part.size.IsEmpty()) return;
  const GLint firstRow = picture.port.height - part.portY - part.size.height;
  Pixels pixels = frame;
  pixels.topRow += frame.stride * firstRow + std::ptrdiff_t{4} * part.portX;
  picture.buffer->Read(part.pictureX, part.pictureY, part.size, pixels);
}

} // namespace halvenor::agl
