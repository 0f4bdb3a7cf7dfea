#include "platform/driver/picture_scaler.h"

#include "platform/driver/driver_library.h"

#include <GL/glext.h>

namespace halvenor::agl {

Picture PictureScaler::Scale(const Picture& picture, Size output) {
  Picture scaled = picture;
  scaled.port = output;
  const Fitted fitted = FitPicture(picture, output);
  if (fitted.size != triedSize_) {
    triedSize_ = fitted.size;
    target_.reset(); // before the new one, so that both never need memory at once
    target_ = RenderTarget::Make(fitted.size, false);
  }
  if (!target_) return scaled;

  const Size from = picture.buffer->GetSize();
  glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<const RenderTarget*>(picture.buffer)->Name());
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target_->Name());
  glPushAttrib(GL_SCISSOR_BIT);
  glDisable(GL_SCISSOR_TEST);
  glBlitFramebuffer(0, 0, from.width, from.height, 0, 0, fitted.size.width, fitted.size.height,
                    GL_COLOR_BUFFER_BIT, GL_LINEAR);
  glPopAttrib();
  scaled.buffer = target_.get();
  scaled.x = fitted.x;
  scaled.y = fitted.y;
  return scaled;
}

} // namespace halvenor::agl
