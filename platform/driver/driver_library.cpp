#include "platform/driver/driver_library.h"

#include "platform/agl_errors.h"
#include "platform/extension_list.h"

#include <array>
#include <cstdio>
#include <dlfcn.h>
#include <string>

namespace halvenor::agl {
namespace {

gl_calls::Table driverCalls;
std::string missing;

/// The functions of a library. It stays loaded: drivers do not survive being unloaded.
class Library {
public:
  explicit Library(const char* name) : name_(name), handle_(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr && missing.empty()) missing = std::string(name) + " is not installed";
  }

  [[nodiscard]] bool IsComplete() const { return handle_ != nullptr && isComplete_; }

  template <class Function>
  void Find(const char* name, Function*& function) {
    if (handle_ == nullptr) return;
    function = reinterpret_cast<Function*>(dlsym(handle_, name));
    if (function != nullptr) return;
    isComplete_ = false;
    missing = std::string(name_) + " lacks " + name;
  }

private:
  const char* name_;
  void* handle_;
  bool isComplete_ = true;
};

GLboolean CheckExtension(const GLubyte* name, const GLubyte* list) {
  return HasExtension(reinterpret_cast<const char*>(list), reinterpret_cast<const char*>(name));
}

bool LoadAll() {
  Library egl("libEGL.so.1");
  Library gl("libGL.so.1");
  Library glu("libGLU.so.1");
#define HALVENOR_FROM_EGL(name) egl.Find(#name, name.function);
  HALVENOR_EGL_FUNCTIONS(HALVENOR_FROM_EGL)
#undef HALVENOR_FROM_EGL
#define HALVENOR_FROM_GL(name) gl.Find(#name, name.function);
  HALVENOR_DRIVER_FUNCTIONS(HALVENOR_FROM_GL)
#undef HALVENOR_FROM_GL
#define HALVENOR_FOR_PLUGIN(name, kinds)                                                           \
  (std::string_view(#name).starts_with("glu") ? glu : gl).Find(#name, driverCalls.name);
  HALVENOR_GL_FUNCTIONS(HALVENOR_FOR_PLUGIN)
#undef HALVENOR_FOR_PLUGIN
  driverCalls.gluCheckExtension = CheckExtension;
  return egl.IsComplete() && gl.IsComplete() && glu.IsComplete();
}

} // namespace

bool LoadDriver() {
  static const bool isLoaded = LoadAll();
  return isLoaded;
}

const std::string& MissingForDriver() {
  return missing;
}

const gl_calls::Table& DriverCalls() {
  return driverCalls;
}

void LogEgl(std::string_view what) {
  std::array<char, 48> error{};
  std::snprintf(error.data(), error.size(), " failed (EGL error 0x%04x)",
                static_cast<unsigned>(eglGetError()));
  Log(std::string(what) + error.data());
}

} // namespace halvenor::agl
