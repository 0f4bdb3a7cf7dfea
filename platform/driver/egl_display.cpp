#include "platform/driver/egl_display.h"

#include "platform/agl_errors.h"
#include "platform/driver/driver_library.h"
#include "platform/extension_list.h"

#include <EGL/eglext.h>

#include <string>

namespace halvenor::agl {
namespace {

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
  return HasExtension(extensions, "EGL_MESA_device_software");
}

} // namespace

bool HasEglExtension(EGLDisplay display, const char* name) {
  return HasExtension(eglQueryString(display, EGL_EXTENSIONS), name);
}

bool EglDisplay::Initialize(EGLenum platform, void* native) {
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
  if (!HasExtension(eglQueryString(handle_, EGL_CLIENT_APIS), "OpenGL")) {
    Log("the EGL driver knows no desktop OpenGL");
    return false;
  }
  software_ = IsSoftwareDevice(handle_);
  return true;
}

void EglDisplay::Terminate() {
  if (handle_ != EGL_NO_DISPLAY) eglTerminate(handle_);
  handle_ = EGL_NO_DISPLAY;
}

} // namespace halvenor::agl
