// Offscreen ports: contexts without any window system, frames handed to a callback.
#include "platform/agl_errors.h"
#include "platform/frame_reader.h"
#include "platform/window_systems.h"

#include <EGL/eglext.h>

#include <array>
#include <cstdint>
#include <vector>

namespace halvenor::agl {
namespace {

/// The surfaceless platform, or the first graphics device that works. It is never terminated:
/// there is one for the whole process, which others may use, and it hangs on nothing of the host.
class OffscreenDisplay final : public EglDisplay {
public:
  bool Open() {
    if (HasEglExtension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless") &&
        Initialise(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY))
      return true;
    if (!HasEglExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_device")) return false;
    const auto queryDevices =
        reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    std::array<EGLDeviceEXT, 16> devices{};
    EGLint count = 0;
    if (queryDevices == nullptr ||
        !queryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count))
      return false;
    for (EGLint i = 0; i < count; ++i)
      if (Initialise(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<std::size_t>(i)])) return true;
    return false;
  }

  [[nodiscard]] bool Serves(const HalvenorPort& port) const override {
    return port.kind == kHalvenorPortOffscreen;
  }
};

/// Reads each picture back at once: that beat a ring of pixel buffers at every size measured.
class OffscreenPresenter final : public Presenter {
public:
  explicit OffscreenPresenter(const HalvenorPort& port) : port_(port) {}

  void Present(const Picture& picture) override {
    if (port_.frameFinished == nullptr) {
      glFinish();
      return;
    }
    if (picture.port.IsEmpty()) return;
    const auto stride = static_cast<std::ptrdiff_t>(picture.port.width) * 4;
    frame_.resize(static_cast<std::size_t>(stride * picture.port.height));
    reader_.Read(picture, frame_.data());
    const HalvenorFrame frame{frame_.data() + stride * (picture.port.height - 1), -stride,
                              picture.port.width, picture.port.height};
    port_.frameFinished(port_.frameRefCon, &frame);
  }

private:
  const HalvenorPort& port_;
  FrameReader reader_{FrameReader::Layout::RgbaBottomRowFirst};
  std::vector<std::uint8_t> frame_;
};

} // namespace

std::shared_ptr<EglDisplay> OpenOffscreenDisplay() {
  auto display = std::make_shared<OffscreenDisplay>();
  if (display->Open()) return display;
  Log("no EGL platform for drawing without a window");
  return nullptr;
}

std::unique_ptr<Presenter> MakeOffscreenPresenter(const HalvenorPort& port) {
  return std::make_unique<OffscreenPresenter>(port);
}

} // namespace halvenor::agl
