#include "platform/driver/driver_backend.h"

#include "gl_calls/without_drawing.h"
#include "platform/agl_errors.h"
#include "platform/driver/driver_library.h"
#include "platform/driver/foreign_context.h"
#include "platform/extension_list.h"

#include <EGL/eglext.h>

#include <utility>

namespace halvenor::agl {
namespace {

/// What is current on one thread.
struct ThreadState {
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLContext handle = EGL_NO_CONTEXT;
  ForeignContext foreign; ///< what the first of our contexts displaced
};
thread_local ThreadState thisThread;

bool IsOursCurrent() {
  return thisThread.handle != EGL_NO_CONTEXT && eglGetCurrentContext() == thisThread.handle;
}

bool HasGlExtension(const char* name) {
  return HasExtension(reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)), name);
}

void CompileList(GLuint list, const Glyph& glyph) {
  // Compiling a bitmap of no size, such as a blank's, leaves Mesa with GL_OUT_OF_MEMORY: one
  // clear pixel instead.
  static constexpr GLubyte kClear[4] = {};
  const bool isBlank = glyph.rows.empty();
  glNewList(list, GL_COMPILE);
  glBitmap(isBlank ? 1 : glyph.width, isBlank ? 1 : glyph.height, static_cast<GLfloat>(-glyph.left),
           static_cast<GLfloat>(-glyph.bottom), static_cast<GLfloat>(glyph.advance), 0.0F,
           isBlank ? kClear : glyph.rows.data());
  glEndList();
}

} // namespace

std::shared_ptr<DriverBackend> DriverBackend::Make(const std::shared_ptr<WindowSystem>& system,
                                                   GLenum& error) {
  error = AGL_NO_DISPLAY;
  const EglDisplay* const display = LoadDriver() ? system->Egl() : nullptr;
  if (display == nullptr) return nullptr;
  error = AGL_NO_OPENGL;
  std::shared_ptr<DriverBackend> backend(new DriverBackend(system, *display));
  if (!backend->Create()) return nullptr;
  error = AGL_NO_ERROR;
  return backend;
}

bool DriverBackend::Create() {
  const EGLenum api = eglQueryAPI();
  eglBindAPI(EGL_OPENGL_API);
  handle_ = eglCreateContext(display_.Handle(), EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, nullptr);
  if (handle_ == EGL_NO_CONTEXT) LogEgl("eglCreateContext");
  eglBindAPI(api);
  if (handle_ == EGL_NO_CONTEXT) return false;
  if (!Bind(EGLSurface{EGL_NO_SURFACE})) {
    LogEgl("eglMakeCurrent");
    End();
    return false;
  }
  if (HasGlExtension("GL_ARB_framebuffer_object")) nowhere_ = RenderTarget::Make({1, 1}, false);
  if (nowhere_) return true;
  Log("the OpenGL driver lacks frame buffer objects");
  LetGo();
  End();
  return false;
}

bool DriverBackend::IsCurrent() const {
  return handle_ != EGL_NO_CONTEXT && thisThread.handle == handle_ && IsOursCurrent();
}

bool DriverBackend::Bind(EGLSurface surface) {
  const bool isFirst = !IsOursCurrent();
  if (isFirst) thisThread = {EGL_NO_DISPLAY, EGL_NO_CONTEXT, ForeignContext::TakeAside()};
  if (!eglMakeCurrent(display_.Handle(), surface, surface, handle_)) {
    if (isFirst) thisThread.foreign.PutBack();
    return false;
  }
  thisThread.display = display_.Handle();
  thisThread.handle = handle_;
  UseCalls();
  return true;
}

const gl_calls::Table& DriverBackend::Calls() const {
  return DriverCalls();
}

const gl_calls::Table& DriverBackend::CallsWithoutDrawing() const {
  static const gl_calls::Table calls = gl_calls::WithoutDrawing(DriverCalls());
  return calls;
}

bool DriverBackend::MakeCurrent() {
  EGLSurface surface = PortPresenter() != nullptr ? PortPresenter()->Surface() : EGL_NO_SURFACE;
  // Without its window, a context is still needed to draw and to clean up.
  return Bind(surface) || (surface != EGL_NO_SURFACE && Bind(EGLSurface{EGL_NO_SURFACE}));
}

void DriverBackend::LetGo() {
  if (IsCurrent()) {
    eglMakeCurrent(thisThread.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    thisThread.foreign.PutBack();
  }
  thisThread = ThreadState();
}

void DriverBackend::Release() {
  Backend::Release();
  scaler_.Reset();
  nowhere_.reset();
}

void DriverBackend::End() {
  eglDestroyContext(display_.Handle(), std::exchange(handle_, EGL_NO_CONTEXT));
}

void DriverBackend::SetArea(Size size) {
  glViewport(0, 0, size.width, size.height);
  glScissor(0, 0, size.width, size.height);
}

void DriverBackend::DropPort() {
  // The surface must not be in use when it goes.
  if (PortPresenter() != nullptr && PortPresenter()->Surface() != EGL_NO_SURFACE)
    Bind(EGLSurface{EGL_NO_SURFACE});
  Backend::DropPort();
}

std::unique_ptr<Presenter> DriverBackend::MakePresenter(const HalvenorPort& port) {
  // Reading the top row first is what windows in memory need.
  if (display_.IsSoftware() && HasGlExtension("GL_MESA_pack_invert"))
    if (auto presenter = System().MakeMemoryPresenter(port)) return presenter;
  return System().MakeEglPresenter(port);
}

bool DriverBackend::UseSurface() {
  EGLSurface surface = PortPresenter()->Surface();
  if (surface == EGL_NO_SURFACE || Bind(surface)) return true;
  LogEgl("Making the window's surface current");
  return false;
}

std::unique_ptr<Buffer> DriverBackend::MakeBuffer(Size size, bool depth) {
  return RenderTarget::Make(size, depth);
}

GLint DriverBackend::MostTextureSize() const {
  GLint side = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &side);
  return side;
}

void DriverBackend::Bind(const Buffer* buffer) {
  (buffer != nullptr ? static_cast<const RenderTarget*>(buffer) : nowhere_.get())->Bind();
}

void DriverBackend::CompileLists(GLuint base, const std::vector<Glyph>& glyphs) {
  glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
  for (const Glyph& glyph : glyphs)
    CompileList(base++, glyph);
  glPopClientAttrib();
}

} // namespace halvenor::agl
