#include "platform/agl_context.h"

#include "gl_calls/current_table.h"
#include "platform/agl_errors.h"
#include "platform/backend_choice.h"
#include "platform/clock.h"

#include <atomic>
#include <utility>

using namespace halvenor::agl;

namespace {

/// What is current on one thread. The backend is kept alive: another thread may end the context.
struct ThreadState {
  HalvenorContext* context = nullptr;
  std::shared_ptr<Backend> backend;
};
thread_local ThreadState thisThread;

} // namespace

HalvenorContext* HalvenorContext::Current() {
  // Somebody else may have made another context current since.
  const bool isOurs = thisThread.backend != nullptr && thisThread.backend->IsCurrent();
  return isOurs ? thisThread.context : nullptr;
}

void HalvenorContext::LetGo() {
  if (thisThread.backend != nullptr) thisThread.backend->LetGo();
  thisThread = ThreadState();
  halvenor::gl_calls::Use(nullptr);
}

GLenum HalvenorContext::MakeCurrentAnywhere() {
  if (Current() == this) return AGL_NO_ERROR;
  if (backend_ == nullptr) return Realize();
  // A driver's contexts follow each other without what the first displaced being put back.
  const HalvenorContext* const before = Current();
  if (before != nullptr && !(before->backend_->IsDriver() && backend_->IsDriver())) LetGo();
  if (!backend_->MakeCurrent()) return AGL_BAD_CONTEXT;
  thisThread = {this, backend_};
  BeginFrame();
  return AGL_NO_ERROR;
}

void HalvenorContext::BeginFrame() {
  frameBegan_ = halvenor::clock::Now();
  if (port_ == nullptr) return;
  frameUse_ = static_cast<HalvenorFrameUse>(std::atomic_ref(port_->frameUse).load());
  if (frameUse_ == kHalvenorFrameTimely)
    frameUse_ = pace_.HasTime(frameBegan_) ? kHalvenorFrameSeen : kHalvenorFrameTrailsOnly;
}

GLenum HalvenorContext::Realize() {
  const std::shared_ptr<WindowSystem> system = WindowSystem::For(port_);
  if (system == nullptr) return AGL_NO_DISPLAY;
  if (Current() != nullptr) LetGo();
  GLenum error = AGL_NO_ERROR;
  backend_ = MakeBackend(system, error);
  if (backend_ == nullptr) return error;
  thisThread = {this, backend_};
  frameBegan_ = halvenor::clock::Now();
  frameUse_ = kHalvenorFrameSeen;
  backend_->SetArea(BufferSize());
  return AGL_NO_ERROR;
}

GLenum HalvenorContext::Unrealize() {
  if (backend_ != nullptr) {
    HalvenorContext* const before = Current();
    if (const GLenum error = MakeCurrentAnywhere(); error != AGL_NO_ERROR) return error;
    buffer_.reset();
    pbuffer_ = nullptr;
    backend_->Release();
    if (before != nullptr && before != this)
      before->MakeCurrent();
    else
      LetGo();
    backend_->End();
    backend_.reset();
  }
  triedPort_ = false;
  triedSize_ = Size();
  return AGL_NO_ERROR;
}

void HalvenorContext::ReadBounds() {
  Rect bounds{};
  GetPortBounds(lastPort_, &bounds);
  bounds_ = {bounds.right - bounds.left, bounds.bottom - bounds.top};
  output_ = lastPort_ ? Size{lastPort_->outputWidth, lastPort_->outputHeight} : Size();
  surfaceScale_ = lastPort_ ? lastPort_->waylandScale : 0;
}

Size HalvenorContext::BufferSize() const {
  return usesRect_ ? rect_ : bounds_;
}

GLenum HalvenorContext::Attach(GrafPtr port) {
  if (port != nullptr && port != lastPort_) {
    if (!WindowSystem::IsDrawable(*port) || (backend_ != nullptr && !backend_->Serves(*port)))
      return AGL_BAD_DRAWABLE;
    lastPort_ = port;
    triedPort_ = false;
    ReadBounds();
  }
  port_ = port;
  pbuffer_ = nullptr;
  if (Current() != this) return AGL_NO_ERROR;
  const GLenum error = UsePort();
  return error != AGL_NO_ERROR ? error : UseBuffer();
}

GLenum HalvenorContext::Attach(const Buffer& pbuffer) {
  // The port is left alone: its faults are told when it is attached again.
  if (const GLenum error = MakeCurrentAnywhere(); error != AGL_NO_ERROR) return error;
  port_ = nullptr;
  pbuffer_ = &pbuffer;
  Rebind();
  return AGL_NO_ERROR;
}

void HalvenorContext::Forget(const Buffer& pbuffer) {
  if (pbuffer_ != &pbuffer) return;
  pbuffer_ = nullptr;
  Rebind();
}

GLenum HalvenorContext::SetBufferRect(const GLint* values) {
  if (values == nullptr || values[2] < 0 || values[3] < 0) return AGL_BAD_VALUE;
  rectX_ = values[0];
  rectY_ = values[1];
  rect_ = {values[2], values[3]};
  ReadBounds();
  return AGL_NO_ERROR;
}

GLenum HalvenorContext::UsePort() {
  if (port_ == nullptr || triedPort_) return AGL_NO_ERROR;
  triedPort_ = true;
  return backend_->UsePort(*port_) ? AGL_NO_ERROR : AGL_BAD_DRAWABLE;
}

GLenum HalvenorContext::UseBuffer() {
  GLenum error = AGL_NO_ERROR;
  if (const Size wanted = BufferSize(); port_ != nullptr && wanted != triedSize_) {
    triedSize_ = wanted;
    backend_->Bind(nullptr);
    // The old buffer goes first, so that both never need memory at once.
    buffer_.reset();
    buffer_ = backend_->MakeBuffer(wanted, depth_);
    if (buffer_ == nullptr && !wanted.IsEmpty()) error = AGL_NO_BUFFER;
  }
  Rebind();
  return error;
}

void HalvenorContext::Rebind() const {
  const bool isForPort = port_ != nullptr;
  backend_->SetDraws(isForPort ? frameUse_ == kHalvenorFrameSeen
                               : frameUse_ != kHalvenorFrameUndrawn);
  backend_->Bind(port_ != nullptr ? buffer_.get() : pbuffer_);
}

GLenum HalvenorContext::MakeCurrent() {
  if (const GLenum error = MakeCurrentAnywhere(); error != AGL_NO_ERROR) return error;
  const GLenum error = UsePort();
  const GLenum bufferError = UseBuffer();
  return error != AGL_NO_ERROR ? error : bufferError;
}

GLenum HalvenorContext::Update() {
  ReadBounds();
  if (Current() != this) return AGL_NO_ERROR;
  if (!backend_->HasPort()) triedPort_ = false;
  if (buffer_ == nullptr) triedSize_ = Size();
  return MakeCurrent();
}

GLenum HalvenorContext::Swap() {
  if (Current() != this) return AGL_BAD_CONTEXT;
  if (port_ == nullptr) return AGL_NO_ERROR;
  const bool isSeen = frameUse_ == kHalvenorFrameSeen;
  const GLenum error = isSeen ? Present() : GLenum{AGL_NO_ERROR};
  pace_.Add(frameBegan_, halvenor::clock::Now(), isSeen);
  return error;
}

GLenum HalvenorContext::Present() {
  // That there is nothing to show it in was reported when the port was attached.
  if (!backend_->HasPort()) return AGL_NO_ERROR;
  // A buffer that could not be made was reported, too, and leaves no picture to show.
  if (buffer_ == nullptr && !BufferSize().IsEmpty()) return AGL_NO_ERROR;
  Picture picture{buffer_.get(), 0, 0, bounds_, surfaceScale_};
  if (usesRect_) {
    picture.x = rectX_;
    picture.y = rectY_;
  }
  backend_->Present(picture, output_);
  return UseBuffer();
}
