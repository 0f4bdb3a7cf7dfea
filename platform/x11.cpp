// X11 windows: contexts on a connection of this layer's own.
#include "platform/agl_errors.h"
#include "platform/egl_window.h"
#include "platform/frame_reader.h"
#include "platform/window_systems.h"
#include "platform/x11_connection.h"
#include "platform/x11_shm_window.h"

#include <EGL/eglext.h>
#include <X11/Xlib.h>

namespace halvenor::agl {
namespace {

class X11Display final : public EglDisplay {
public:
  explicit X11Display(std::unique_ptr<X11Connection> connection, std::string name)
      : connection_(std::move(connection)), name_(std::move(name)) {}
  ~X11Display() override { Terminate(); }

  bool Open() { return Initialise(EGL_PLATFORM_X11_KHR, connection_->Get()); }

  [[nodiscard]] bool Serves(const HalvenorPort& port) const override {
    return port.kind == kHalvenorPortX11Window &&
           X11Connection::FullName(port.x11DisplayName) == name_;
  }

  [[nodiscard]] X11Connection& Connection() const { return *connection_; }

private:
  std::unique_ptr<X11Connection> connection_;
  std::string name_;
};

class X11EglWindow final : public EglWindow {
public:
  X11EglWindow(EGLDisplay display, Window window) : EglWindow(display), window_(window) {}

  bool Open(const XWindowAttributes& attributes) {
    return CreateSurface(&window_, static_cast<EGLint>(XVisualIDFromVisual(attributes.visual)));
  }

private:
  Window window_;
};

} // namespace

std::shared_ptr<EglDisplay> OpenX11Display(const HalvenorPort& port) {
  auto connection = X11Connection::Open(port.x11DisplayName);
  if (!connection) return nullptr;
  auto display = std::make_shared<X11Display>(std::move(connection),
                                              X11Connection::FullName(port.x11DisplayName));
  return display->Open() ? display : nullptr;
}

std::unique_ptr<Presenter> MakeX11Presenter(EglDisplay& display, const HalvenorPort& port) {
  X11Connection& connection = static_cast<X11Display&>(display).Connection();
  XWindowAttributes attributes{};
  if (!XGetWindowAttributes(connection.Get(), port.x11Window, &attributes)) {
    Log("there is no such X window");
    return nullptr;
  }
  if (display.IsSoftware() && FrameReader::CanInvert())
    if (auto window = MakeX11ShmWindow(connection, port.x11Window)) return window;
  auto window = std::make_unique<X11EglWindow>(display.Handle(), port.x11Window);
  if (!window->Open(attributes)) return nullptr;
  return window;
}

} // namespace halvenor::agl
