#include "config_window/module_paths.h"

#include <dlfcn.h>
#include <initializer_list>
#include <system_error>
#include <unistd.h>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

fs::path ModulePath() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&PluginBundlePath), &info) == 0) return {};
  std::error_code failed;
  const fs::path whole = fs::canonical(info.dli_fname, failed);
  return failed ? fs::path(info.dli_fname) : whole;
}

fs::path Above(fs::path path, int levels) {
  for (int i = 0; i < levels; ++i)
    path = path.parent_path();
  return path;
}

} // namespace

fs::path PluginBundlePath() {
  // Halvenor.bundle/Contents/Frameworks/CocoaBundle.bundle/Contents/Linux/CocoaBundle
  return Above(ModulePath(), 6);
}

fs::path ProgramPath(const char* name) {
  std::error_code failed;
  const fs::path beside = fs::read_symlink("/proc/self/exe", failed).parent_path();
  // bin/ and lib/halvenor/Halvenor.bundle
  const fs::path tree = Above(PluginBundlePath(), 3) / "bin";
  for (const fs::path& folder : {beside, tree}) {
    if (access((folder / name).c_str(), X_OK) == 0) return folder / name;
  }
  return {};
}

} // namespace halvenor
