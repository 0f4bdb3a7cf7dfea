#include "platform/backend_choice.h"

#include "platform/agl.h"
#include "platform/agl_errors.h"
#include "platform/cpu/cpu_backend.h"
#include "platform/driver/driver_backend.h"
#include "platform/driver/driver_library.h"
#include "platform/gl_choice.h"

#include <string>

namespace halvenor::agl {
namespace {

std::shared_ptr<Backend> MakeCpuBackend(const std::shared_ptr<WindowSystem>& system,
                                        const std::string& why) {
  Log("OpenGL is drawn on the processor: " + why);
  auto backend = std::make_shared<CpuBackend>(system);
  backend->MakeCurrent();
  return backend;
}

} // namespace

std::shared_ptr<Backend> MakeBackend(const std::shared_ptr<WindowSystem>& system, GLenum& error) {
  error = AGL_NO_ERROR;
  const GlChoice choice = ChosenGl();
  if (choice == GlChoice::Cpu) return MakeCpuBackend(system, "it was asked for");
  if (choice == GlChoice::Automatic && LoadDriver()) {
    const EglDisplay* const display = system->Egl();
    if (display != nullptr && display->IsSoftware() && system->TakesMemory())
      return MakeCpuBackend(system, "there is no graphics card");
  }
  if (auto driver = DriverBackend::Make(system, error)) return driver;
  const std::string why = LoadDriver() ? "there is no usable driver" : MissingForDriver();
  if (choice == GlChoice::Driver) {
    Log(why);
    return nullptr;
  }
  error = AGL_NO_ERROR;
  return MakeCpuBackend(system, why);
}

} // namespace halvenor::agl
