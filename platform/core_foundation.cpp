#include "platform/core_foundation.h"

#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <plist/plist.h>
#include <string>
#include <utility>

namespace fs = std::filesystem;

struct HalvenorBundle {
  fs::path contents;
};

struct HalvenorUrl {
  std::string path; ///< absolute
};

namespace {

struct PlistDeleter {
  void operator()(void* node) const { plist_free(node); }
};

bool IsCalled(const fs::path& infoFile, const char* identifier) {
  std::ifstream file(infoFile, std::ios::binary);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  plist_t root = nullptr;
  plist_from_memory(text.data(), static_cast<std::uint32_t>(text.size()), &root);
  const std::unique_ptr<void, PlistDeleter> owner(root);
  // What is no dictionary has no items, and what is no string equals none.
  return plist_string_val_compare(plist_dict_get_item(root, "CFBundleIdentifier"), identifier) == 0;
}

/// The folder "Contents" of the innermost bundle called `identifier` around the file `module`;
/// empty when there is none.
fs::path FindContents(const fs::path& module, const char* identifier) {
  std::error_code failed;
  // The folder, not the file: a module may be a link to a file that lies elsewhere.
  const fs::path absolute = fs::absolute(module, failed);
  fs::path folder = fs::canonical(absolute.parent_path(), failed);
  for (; folder.has_relative_path(); folder = folder.parent_path())
    if (folder.filename() == "Contents" && IsCalled(folder / "Info.plist", identifier))
      return folder;
  return {};
}

/// Bundles stay for the life of the process, which may end without this library's leave.
CFBundleRef FindBundle(const char* module, const char* identifier) {
  static std::mutex lock;
  static auto& known = *new std::map<std::pair<std::string, std::string>, HalvenorBundle>;
  const std::scoped_lock locked(lock);
  std::pair<std::string, std::string> key(module, identifier);
  if (const auto found = known.find(key); found != known.end()) return &found->second;
  fs::path contents = FindContents(module, identifier);
  if (contents.empty()) return nullptr;
  return &known.emplace(std::move(key), HalvenorBundle{std::move(contents)}).first->second;
}

} // namespace

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
  Dl_info caller{};
  if (identifier == nullptr || dladdr(__builtin_return_address(0), &caller) == 0 ||
      caller.dli_fname == nullptr)
    return nullptr;
  return FindBundle(caller.dli_fname, identifier);
}

CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle) {
  if (bundle == nullptr) return nullptr;
  const fs::path folder = bundle->contents / "Resources";
  std::error_code failed;
  if (!fs::is_directory(folder, failed)) return nullptr;
  return new (std::nothrow) HalvenorUrl{folder.string()};
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
