#include "platform/x11/x11_window_system.h"

#include "platform/agl_errors.h"
#include "platform/driver/egl_window.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_shm_window.h"

#include <EGL/eglext.h>
#include <X11/Xlib.h>

namespace halvenor::agl {
namespace {

class X11EglWindow final : public EglWindow {
public:
  X11EglWindow(EGLDisplay display, Window window) : EglWindow(display), window_(window) {}

  bool Open(const XWindowAttributes& attributes) {
    return CreateSurface(&window_, static_cast<EGLint>(XVisualIDFromVisual(attributes.visual)));
  }

private:
  Window window_;
};

class X11WindowSystem final : public WindowSystem {
public:
  X11WindowSystem(std::unique_ptr<X11Connection> connection, std::string name)
      : connection_(std::move(connection)), name_(std::move(name)) {}
  ~X11WindowSystem() override { egl_.Terminate(); }

  [[nodiscard]] bool Serves(const HalvenorPort& port) const override {
    return port.kind == kHalvenorPortX11Window &&
           X11Connection::FullName(port.x11DisplayName) == name_;
  }

  [[nodiscard]] bool TakesMemory() override { return CanShareMemory(*connection_); }

  std::unique_ptr<Presenter> MakeMemoryPresenter(const HalvenorPort& port) override {
    if (XWindowAttributes attributes; !FindWindow(port, attributes)) return nullptr;
    return MakeX11ShmWindow(*connection_, port.x11Window);
  }

  std::unique_ptr<Presenter> MakeEglPresenter(const HalvenorPort& port) override {
    XWindowAttributes attributes;
    if (!FindWindow(port, attributes)) return nullptr;
    auto window = std::make_unique<X11EglWindow>(egl_.Handle(), port.x11Window);
    if (!window->Open(attributes)) return nullptr;
    return window;
  }

private:
  bool OpenEgl(EglDisplay& display) override {
    return display.Initialize(EGL_PLATFORM_X11_KHR, connection_->Get());
  }

  bool FindWindow(const HalvenorPort& port, XWindowAttributes& attributes) {
    if (XGetWindowAttributes(connection_->Get(), port.x11Window, &attributes)) return true;
    Log("there is no such X window");
    return false;
  }

  std::unique_ptr<X11Connection> connection_;
  std::string name_;
};

} // namespace

std::shared_ptr<WindowSystem> OpenX11WindowSystem(const HalvenorPort& port) {
  auto connection = X11Connection::Open(port.x11DisplayName);
  if (!connection) return nullptr;
  return std::make_shared<X11WindowSystem>(std::move(connection),
                                           X11Connection::FullName(port.x11DisplayName));
}

} // namespace halvenor::agl
