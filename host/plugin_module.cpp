#include "host/plugin_module.h"

#include <dlfcn.h>
#include <system_error>

namespace halvenor {
namespace {

namespace fs = std::filesystem;

// The loader's error text without the file name at its beginning.
std::string LoaderText(const fs::path& file) {
  const char* text = dlerror();
  std::string reason = text ? text : "unknown reason";
  const std::string prefix = file.string() + ": ";
  if (reason.starts_with(prefix)) reason.erase(0, prefix.size());
  return reason;
}

} // namespace

std::optional<PluginModule> PluginModule::Load(const fs::path& path, std::string& error) {
  const auto fail = [&](const std::string& reason) {
    error = "cannot load the plug-in " + path.string() + ": " + reason;
    return std::nullopt;
  };
  std::error_code failed;
  const fs::file_status kind = fs::status(path, failed);
  if (!fs::exists(kind)) return fail(failed ? failed.message() : "no such file or folder");

  // Absolute, so that the loader never searches its library folders for a bare name.
  const fs::path absolute = fs::canonical(path, failed);
  if (failed) return fail(failed.message());
  fs::path file = absolute;
  if (fs::is_directory(kind)) {
    file = absolute / "Contents/Linux" / absolute.stem();
    if (!fs::is_regular_file(file, failed))
      return fail("the folder is not a plug-in bundle (it has no Contents/Linux/" +
                  absolute.stem().string() + ")");
  } else if (!fs::is_regular_file(kind)) {
    return fail("it is neither a folder nor a file");
  }

  void* const handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  if (!handle) return fail(LoaderText(file));
  const auto entry = reinterpret_cast<PluginEntryProc>(dlsym(handle, kPluginEntryName));
  if (!entry) return fail("it is not a visualizer plug-in (" + LoaderText(file) + ")");
  return PluginModule(entry, absolute);
}

} // namespace halvenor
