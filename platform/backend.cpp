#include "platform/backend.h"

#include "gl_calls/current_table.h"

namespace halvenor::agl {

void Backend::SetDraws(bool draws) {
  if (draws == draws_) return;
  draws_ = draws;
  UseCalls();
}

void Backend::UseCalls() const {
  gl_calls::Use(draws_ ? &Calls() : &CallsWithoutDrawing());
}

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
