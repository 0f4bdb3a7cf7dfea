#include "platform/agl_context.h"

#include "platform/agl_errors.h"
#include "platform/foreign_context.h"

#include <EGL/eglext.h>

#include <cstring>
#include <utility>

using namespace halvenor::agl;

namespace {

/// What is current on one thread.
struct ThreadState {
  HalvenorContext* context = nullptr;
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLContext handle = EGL_NO_CONTEXT;
  ForeignContext foreign; ///< what the first of our contexts displaced
};
thread_local ThreadState thisThread;

bool IsDrawable(const HalvenorPort& port) {
  switch (port.kind) {
  case kHalvenorPortX11Window:
    return port.x11Window != 0;
  case kHalvenorPortWaylandSurface:
    return port.waylandDisplay != nullptr && port.waylandSurface != nullptr;
  case kHalvenorPortOffscreen:
    return true;
  }
  return false;
}

bool HasFrameBufferObjects() {
  const auto* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
  const auto* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
  return version != nullptr && extensions != nullptr &&
         std::strstr(extensions, "GL_ARB_framebuffer_object") != nullptr;
}

} // namespace

HalvenorContext* HalvenorContext::Current() {
  // Somebody else may have made a context of his own current since.
  const bool isOurs = thisThread.context != nullptr && eglGetCurrentContext() == thisThread.handle;
  return isOurs ? thisThread.context : nullptr;
}

void HalvenorContext::LetGo() {
  if (Current() != nullptr) {
    eglMakeCurrent(thisThread.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    thisThread.foreign.PutBack();
  }
  thisThread = ThreadState();
}

bool HalvenorContext::Bind(EGLSurface surface) {
  const bool isFirst = Current() == nullptr;
  if (isFirst) thisThread = {nullptr, EGL_NO_DISPLAY, EGL_NO_CONTEXT, ForeignContext::TakeAside()};
  if (!eglMakeCurrent(display_->Handle(), surface, surface, handle_)) {
    if (isFirst) thisThread.foreign.PutBack();
    return false;
  }
  thisThread.context = this;
  thisThread.display = display_->Handle();
  thisThread.handle = handle_;
  return true;
}

GLenum HalvenorContext::Realise() {
  display_ = EglDisplay::For(port_);
  if (!display_) return AGL_NO_DISPLAY;
  const EGLenum api = eglQueryAPI();
  eglBindAPI(EGL_OPENGL_API);
  handle_ = eglCreateContext(display_->Handle(), EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
  if (handle_ == EGL_NO_CONTEXT) LogEgl("eglCreateContext");
  eglBindAPI(api);
  if (handle_ == EGL_NO_CONTEXT) {
    display_.reset();
    return AGL_NO_OPENGL;
  }
  if (!Bind(EGL_NO_SURFACE)) {
    LogEgl("eglMakeCurrent");
    eglDestroyContext(display_->Handle(), std::exchange(handle_, EGL_NO_CONTEXT));
    display_.reset();
    return AGL_NO_OPENGL;
  }
  if (HasFrameBufferObjects()) nowhere_ = RenderTarget::Make({1, 1}, depth_);
  if (!nowhere_) {
    Log("the OpenGL driver lacks frame buffer objects");
    Unrealise();
    return AGL_NO_OPENGL;
  }
  const Size size = BufferSize();
  glViewport(0, 0, size.width, size.height);
  glScissor(0, 0, size.width, size.height);
  return AGL_NO_ERROR;
}

GLenum HalvenorContext::Unrealise() {
  if (handle_ != EGL_NO_CONTEXT) {
    HalvenorContext* const before = Current();
    if (!Bind(EGL_NO_SURFACE)) return AGL_BAD_CONTEXT;
    buffer_ = RenderTarget();
    nowhere_ = RenderTarget();
    scaler_ = PictureScaler();
    pbuffer_ = nullptr;
    presenter_.reset();
    if (before != nullptr && before != this)
      before->MakeCurrent();
    else
      LetGo();
    eglDestroyContext(display_->Handle(), handle_);
    handle_ = EGL_NO_CONTEXT;
  }
  display_.reset();
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
    if (!IsDrawable(*port) || (display_ && !display_->Serves(*port))) return AGL_BAD_DRAWABLE;
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

GLenum HalvenorContext::Attach(const RenderTarget& pbuffer) {
  // The port is left alone: its faults are told when it is attached again.
  if (const GLenum error = BindSomeSurface(); error != AGL_NO_ERROR) return error;
  port_ = nullptr;
  pbuffer_ = &pbuffer;
  Rebind();
  return AGL_NO_ERROR;
}

void HalvenorContext::Forget(const RenderTarget& pbuffer) {
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
  // The old surface must not be in use when it goes.
  if (presenter_ && presenter_->Surface() != EGL_NO_SURFACE) Bind(EGL_NO_SURFACE);
  presenter_.reset();
  presenter_ = MakePresenter(*display_, *port_);
  if (!presenter_) return AGL_BAD_DRAWABLE;
  if (presenter_->Surface() == EGL_NO_SURFACE || Bind(presenter_->Surface())) return AGL_NO_ERROR;
  LogEgl("Making the window's surface current");
  presenter_.reset();
  return AGL_BAD_DRAWABLE;
}

GLenum HalvenorContext::UseBuffer() {
  GLenum error = AGL_NO_ERROR;
  if (const Size wanted = BufferSize(); port_ != nullptr && wanted != triedSize_) {
    triedSize_ = wanted;
    nowhere_.Bind();
    // The old buffer goes first, so that both never need memory at once.
    buffer_ = RenderTarget();
    buffer_ = RenderTarget::Make(wanted, depth_);
    if (!buffer_ && !wanted.IsEmpty()) error = AGL_NO_BUFFER;
  }
  Rebind();
  return error;
}

void HalvenorContext::Rebind() const {
  const RenderTarget* const target = port_ != nullptr ? &buffer_ : pbuffer_;
  (target != nullptr && *target ? *target : nowhere_).Bind();
}

GLenum HalvenorContext::BindSomeSurface() {
  if (Current() == this) return AGL_NO_ERROR;
  if (handle_ == EGL_NO_CONTEXT) return Realise();
  const EGLSurface surface = presenter_ ? presenter_->Surface() : EGL_NO_SURFACE;
  // Without its window, a context is still needed to draw and to clean up.
  if (!Bind(surface) && (surface == EGL_NO_SURFACE || !Bind(EGL_NO_SURFACE)))
    return AGL_BAD_CONTEXT;
  return AGL_NO_ERROR;
}

GLenum HalvenorContext::MakeCurrent() {
  if (const GLenum error = BindSomeSurface(); error != AGL_NO_ERROR) return error;
  const GLenum error = UsePort();
  const GLenum bufferError = UseBuffer();
  return error != AGL_NO_ERROR ? error : bufferError;
}

GLenum HalvenorContext::Update() {
  ReadBounds();
  if (Current() != this) return AGL_NO_ERROR;
  if (!presenter_) triedPort_ = false;
  if (!buffer_) triedSize_ = Size();
  return MakeCurrent();
}

GLenum HalvenorContext::Swap() {
  if (Current() != this) return AGL_BAD_CONTEXT;
  // That there is nothing to show it in was reported when the port was attached.
  if (port_ == nullptr || !presenter_) return AGL_NO_ERROR;
  // A buffer that could not be made was reported, too, and leaves no picture to show.
  if (!buffer_ && !BufferSize().IsEmpty()) return AGL_NO_ERROR;
  Picture picture{buffer_ ? &buffer_ : nullptr, 0, 0, bounds_, surfaceScale_};
  if (usesRect_) {
    picture.x = rectX_;
    picture.y = rectY_;
  }
  if (!output_.IsEmpty() && output_ != bounds_) picture = scaler_.Scale(picture, output_);
  presenter_->Present(picture);
  return UseBuffer();
}
