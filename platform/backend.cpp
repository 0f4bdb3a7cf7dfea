#include "platform/backend.h"

namespace halvenor::agl {

bool Backend::UsePort(const HalvenorPort& port) {
  DropPort();
  presenter_ = MakePresenter(port);
  if (presenter_ == nullptr) return false;
  if (UseSurface()) return true;
  presenter_.reset();
  return false;
}

void Backend::Present(const Picture& picture, Size output) {
  if (presenter_ == nullptr) return;
  const bool isScaled = !output.IsEmpty() && output != picture.port;
  presenter_->Present(isScaled ? Scale(picture, output) : picture);
}

} // namespace halvenor::agl
