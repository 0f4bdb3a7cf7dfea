#include "platform/egl_display.h"

#include "platform/agl_errors.h"
#include "platform/window_systems.h"

#include <EGL/eglext.h>

#include <algorithm>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

namespace halvenor::agl {
namespace {

/// Whether `list`, names with blanks between them, has `name`.
bool HasWord(const char* list, std::string_view name) {
  std::string_view rest = list != nullptr ? list : "";
  while (!rest.empty()) {
    const auto end = std::min(rest.find(' '), rest.size());
    if (rest.substr(0, end) == name) return true;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return false;
}

bool IsSoftwareDevice(EGLDisplay display) {
  if (!HasEglExtension(EGL_NO_DISPLAY, "EGL_EXT_device_query")) return false;
  const auto queryDisplay = reinterpret_cast<PFNEGLQUERYDISPLAYATTRIBEXTPROC>(
      eglGetProcAddress("eglQueryDisplayAttribEXT"));
  const auto queryDevice = reinterpret_cast<PFNEGLQUERYDEVICESTRINGEXTPROC>(
      eglGetProcAddress("eglQueryDeviceStringEXT"));
  EGLAttrib device = 0;
  if (!queryDisplay(display, EGL_DEVICE_EXT, &device) || device == 0) return false;
  const char* extensions =
      queryDevice(reinterpret_cast<EGLDeviceEXT>(device), EGL_EXTENSIONS); // NOLINT: EGL's own type
  return HasWord(extensions, "EGL_MESA_device_software");
}

std::shared_ptr<EglDisplay> Open(const HalvenorPort& port) {
  switch (port.kind) {
  case kHalvenorPortX11Window:
    return OpenX11Display(port);
  case kHalvenorPortWaylandSurface:
    return OpenWaylandDisplay(port);
  case kHalvenorPortOffscreen:
    return OpenOffscreenDisplay();
  }
  return nullptr;
}

} // namespace

bool HasEglExtension(EGLDisplay display, const char* name) {
  return HasWord(eglQueryString(display, EGL_EXTENSIONS), name);
}

std::shared_ptr<EglDisplay> EglDisplay::For(const HalvenorPort* port) {
  static std::mutex lock;
  static std::vector<std::weak_ptr<EglDisplay>> known;
  HalvenorPort offscreen{};
  offscreen.kind = kHalvenorPortOffscreen;
  const HalvenorPort& wanted = port != nullptr ? *port : offscreen;

  const std::scoped_lock locked(lock);
  std::erase_if(known, [](const auto& display) { return display.expired(); });
  for (const auto& entry : known)
    if (auto display = entry.lock(); display && display->Serves(wanted)) return display;
  auto display = Open(wanted);
  if (display) known.push_back(display);
  return display;
}

bool EglDisplay::Initialise(EGLenum platform, void* native) {
  handle_ = eglGetPlatformDisplay(platform, native, nullptr);
  if (handle_ == EGL_NO_DISPLAY) {
    LogEgl("eglGetPlatformDisplay");
    return false;
  }
  firstUser_ = eglQueryString(handle_, EGL_VERSION) == nullptr;
  if (!eglInitialize(handle_, nullptr, nullptr)) {
    LogEgl("eglInitialize");
    return false;
  }
  for (const char* name : {"EGL_KHR_no_config_context", "EGL_KHR_surfaceless_context"}) {
    if (HasEglExtension(handle_, name)) continue;
    Log("the EGL driver lacks " + std::string(name));
    return false;
  }
  if (!HasWord(eglQueryString(handle_, EGL_CLIENT_APIS), "OpenGL")) {
    Log("the EGL driver knows no desktop OpenGL");
    return false;
  }
  software_ = IsSoftwareDevice(handle_);
  return true;
}

void EglDisplay::Terminate() {
  if (handle_ != EGL_NO_DISPLAY) eglTerminate(handle_);
}

} // namespace halvenor::agl
