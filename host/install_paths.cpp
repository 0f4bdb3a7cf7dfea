#include "host/install_paths.h"

#include <system_error>

namespace halvenor {

std::filesystem::path ExecutableFolder() {
  std::error_code failed;
  return std::filesystem::read_symlink("/proc/self/exe", failed).parent_path();
}

std::filesystem::path InstalledPluginPath() {
  return (ExecutableFolder() / "../lib/halvenor/Halvenor.bundle").lexically_normal();
}

} // namespace halvenor
