#define GL_GLEXT_PROTOTYPES
#include "platform/frame_reader.h"

#include <GL/glext.h>

#include <cstddef>
#include <cstring>
#include <string_view>

namespace halvenor::agl {

bool FrameReader::CanInvert() {
  const auto* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
  return extensions != nullptr &&
         std::string_view(extensions).find("GL_MESA_pack_invert") != std::string_view::npos;
}

void FrameReader::Read(const Picture& picture, std::uint8_t* frame) {
  const VisiblePart part = ClipToPort(picture);
  if (picture.port != frameSize_ || part != held_) {
    const auto pixels = static_cast<std::size_t>(picture.port.width) *
                        static_cast<std::size_t>(picture.port.height);
    std::memset(frame, 0, pixels * 4);
    frameSize_ = picture.port;
    held_ = part;
  }
  if (part.size.IsEmpty()) return;

  const bool topFirst = layout_ == Layout::BgraTopRowFirst;
  const GLint firstRow =
      topFirst ? picture.port.height - part.portY - part.size.height : part.portY;
  const auto offset = (static_cast<std::ptrdiff_t>(firstRow) * picture.port.width + part.portX) * 4;

  glBindFramebuffer(GL_READ_FRAMEBUFFER, picture.target->Name());
  glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glPixelStorei(GL_PACK_ROW_LENGTH, picture.port.width);
  glPixelStorei(GL_PACK_SKIP_ROWS, 0);
  glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_PACK_SWAP_BYTES, GL_FALSE);
  if (topFirst) glPixelStorei(GL_PACK_INVERT_MESA, GL_TRUE);
  glReadPixels(part.pictureX, part.pictureY, part.size.width, part.size.height,
               topFirst ? GL_BGRA : GL_RGBA,
               topFirst ? GL_UNSIGNED_INT_8_8_8_8_REV : GL_UNSIGNED_BYTE, frame + offset);
  glPopClientAttrib();
}

} // namespace halvenor::agl
