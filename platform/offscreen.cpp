#include "platform/offscreen.h"

#include "platform/agl_errors.h"
#include "platform/driver/driver_library.h"
#include "platform/frame_reader.h"

#include <EGL/eglext.h>

#include <array>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

namespace halvenor::agl {
namespace {

/// Reads each picture back at once: that beat a ring of pixel buffers at every size measured.
class OffscreenPresenter final : public Presenter {
public:
  explicit OffscreenPresenter(const HalvenorPort& port) : port_(port) {}

  void Present(const Picture& picture) override {
    if (port_.frameFinished == nullptr || picture.port.IsEmpty()) return;
    const auto bytes = std::ptrdiff_t{picture.port.width} * 4;
    Pixels pixels{port_.destination, port_.destinationStride};
    if (pixels.topRow == nullptr) {
      // Bottom row first, as OpenGL has it.
      if (!MakeRoom(static_cast<std::size_t>(bytes * picture.port.height))) return;
      pixels = {frame_.data() + bytes * (picture.port.height - 1), -bytes};
    }
    reader_.Read(picture, pixels);
    const HalvenorFrame frame{pixels.topRow, pixels.stride, picture.port.width,
                              picture.port.height};
    port_.frameFinished(port_.frameRefCon, &frame);
  }

private:
  bool MakeRoom(std::size_t bytes) {
    if (frame_.size() == bytes) return true;
    try {
      frame_ = {}; // rather than both at once
      frame_.resize(bytes);
    } catch (const std::bad_alloc&) {
      if (!std::exchange(loggedLoss_, true))
        Log("no memory for pictures of this size; they are lost");
      return false;
    }
    loggedLoss_ = false;
    return true;
  }

  const HalvenorPort& port_;
  FrameReader reader_;
  std::vector<std::uint8_t> frame_;
  bool loggedLoss_ = false;
};

/// EGL is never terminated here: its display is one for the whole process, which others may use,
/// and hangs on nothing of the host.
class OffscreenSystem final : public WindowSystem {
public:
  [[nodiscard]] bool Serves(const HalvenorPort& port) const override {
    return port.kind == kHalvenorPortOffscreen;
  }

  std::unique_ptr<Presenter> MakeMemoryPresenter(const HalvenorPort& port) override {
    return std::make_unique<OffscreenPresenter>(port);
  }

  std::unique_ptr<Presenter> MakeEglPresenter(const HalvenorPort& port) override {
    return MakeMemoryPresenter(port);
  }

private:
  /// The surfaceless platform, or the first graphics device that works.
  bool OpenEgl(EglDisplay& display) override {
    if (HasEglExtension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless") &&
        display.Initialize(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY))
      return true;
    if (OpenDevice(display)) return true;
    Log("no EGL platform for drawing without a window");
    return false;
  }

  static bool OpenDevice(EglDisplay& display) {
    if (!HasEglExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_device")) return false;
    const auto queryDevices =
        reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    std::array<EGLDeviceEXT, 16> devices{};
    EGLint count = 0;
    if (queryDevices == nullptr ||
        !queryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count))
      return false;
    for (EGLint i = 0; i < count; ++i)
      if (display.Initialize(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<std::size_t>(i)]))
        return true;
    return false;
  }
};

} // namespace

std::shared_ptr<WindowSystem> OpenOffscreenSystem(const HalvenorPort& /*port*/) {
  return std::make_shared<OffscreenSystem>();
}

} // namespace halvenor::agl
