#include "platform/core_foundation.h"

#include "files/file_bytes.h"
#include "files/released_by.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <plist/plist.h>
#include <string>
#include <utility>

namespace fs = std::filesystem;

struct HalvenorBundle {
  explicit HalvenorBundle(fs::path folder) : contents(std::move(folder)) {}

  const fs::path contents;
  mutable std::atomic<void*> module = nullptr; ///< as the loader knows it; null: not loaded
};

struct HalvenorUrl {
  std::string path; ///< absolute
};

namespace {

/// What the bundle's property list says under `key`, if it is a string.
std::optional<std::string> Info(const fs::path& contents, const char* key) {
  using namespace halvenor;
  const std::string text =
      ReadFileBytes(AT_FDCWD, (contents / "Info.plist").string(), Links::Follow).bytes.value_or("");
  plist_t root = nullptr;
  plist_from_memory(text.data(), static_cast<std::uint32_t>(text.size()), &root);
  const std::unique_ptr<void, ReleasedBy<plist_free>> owner(root);
  // What is no dictionary has no items, and what is no string has no characters.
  const char* characters = plist_get_string_ptr(plist_dict_get_item(root, key), nullptr);
  if (characters == nullptr) return std::nullopt;
  return characters;
}

/// The folder "Contents" of the innermost bundle called `identifier` around the file `module`;
/// empty when there is none.
fs::path FindContents(const fs::path& module, const char* identifier) {
  std::error_code failed;
  // The folder, not the file: a module may be a link to a file that lies elsewhere.
  const fs::path absolute = fs::absolute(module, failed);
  fs::path folder = fs::canonical(absolute.parent_path(), failed);
  for (; folder.has_relative_path(); folder = folder.parent_path())
    if (folder.filename() == "Contents" && Info(folder, "CFBundleIdentifier") == identifier)
      return folder;
  return {};
}

/// All bundles that anybody asked for. They stay for the life of the process, which may end without
/// this library's leave.
class KnownBundles {
public:
  /// The one whose folder "Contents" this is.
  CFBundleRef At(const fs::path& contents) {
    const std::scoped_lock locked(lock_);
    return &bundles_.try_emplace(contents, contents).first->second;
  }

  /// The one called `identifier` around `module`. Found once, it is not looked for again.
  CFBundleRef Around(const char* module, const char* identifier) {
    std::pair<std::string, std::string> key(module, identifier);
    {
      const std::scoped_lock locked(lock_);
      if (const auto found = around_.find(key); found != around_.end()) return found->second;
    }
    const fs::path contents = FindContents(module, identifier);
    if (contents.empty()) return nullptr;
    const CFBundleRef bundle = At(contents);
    const std::scoped_lock locked(lock_);
    return around_.emplace(std::move(key), bundle).first->second;
  }

private:
  std::mutex lock_;
  std::map<fs::path, HalvenorBundle> bundles_;
  std::map<std::pair<std::string, std::string>, CFBundleRef> around_;
};

KnownBundles& TheBundles() {
  static KnownBundles& bundles = *new KnownBundles;
  return bundles;
}

fs::path ModuleFile(const HalvenorBundle& bundle) {
  const fs::path name = Info(bundle.contents, "CFBundleExecutable").value_or("");
  const bool plain = name.has_filename() && name == name.filename(); // leads to no other folder
  return bundle.contents / "Linux" / (plain ? name : bundle.contents.parent_path().stem());
}

} // namespace

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
  Dl_info caller{};
  if (identifier == nullptr || dladdr(__builtin_return_address(0), &caller) == 0 ||
      caller.dli_fname == nullptr)
    return nullptr;
  return TheBundles().Around(caller.dli_fname, identifier);
}

CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle) {
  if (bundle == nullptr) return nullptr;
  const fs::path folder = bundle->contents / "Resources";
  std::error_code failed;
  if (!fs::is_directory(folder, failed)) return nullptr;
  return new (std::nothrow) HalvenorUrl{folder.string()};
}

CFURLRef CFBundleCopyPrivateFrameworksURL(CFBundleRef bundle) {
  if (bundle == nullptr) return nullptr;
  return new (std::nothrow) HalvenorUrl{(bundle->contents / "Frameworks").string()};
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef /*allocator*/, CFURLRef url,
                                               CFStringRef component, bool /*isDirectory*/) {
  if (url == nullptr || component == nullptr) return nullptr;
  return new (std::nothrow) HalvenorUrl{url->path + '/' + component};
}

CFBundleRef CFBundleCreate(CFAllocatorRef /*allocator*/, CFURLRef url) {
  if (url == nullptr) return nullptr;
  std::error_code failed;
  const fs::path contents = fs::canonical(url->path, failed) / "Contents";
  if (failed || !fs::is_regular_file(contents / "Info.plist", failed)) return nullptr;
  return TheBundles().At(contents);
}

bool CFBundleLoadExecutable(CFBundleRef bundle) {
  if (bundle == nullptr) return false;
  if (bundle->module == nullptr)
    bundle->module = dlopen(ModuleFile(*bundle).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  return bundle->module != nullptr;
}

void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name) {
  void* const module = bundle == nullptr ? nullptr : bundle->module.load();
  return module == nullptr || name == nullptr ? nullptr : dlsym(module, name);
}

bool CFURLGetFileSystemRepresentation(CFURLRef url, bool /*resolveAgainstBase*/, uint8_t* buffer,
                                      ptrdiff_t size) {
  if (url == nullptr || size < 0 || url->path.size() >= static_cast<std::size_t>(size))
    return false;
  std::memcpy(buffer, url->path.c_str(), url->path.size() + 1);
  return true;
}

void CFRelease(CFTypeRef reference) {
  delete static_cast<CFURLRef>(reference);
}
