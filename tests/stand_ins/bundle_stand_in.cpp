#include "tests/stand_ins/bundle_stand_in.h"

#include "gl/resource_file.h"
#include "platform/core_foundation.h"
#include "tests/stand_ins/recording.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

struct HalvenorBundle {};

struct HalvenorUrl {
  std::string path;
};

namespace halvenor::stand_ins {
namespace {

constexpr HalvenorBundle kBundle;

struct State {
  std::mutex mutex;
  std::string folder = HALVENOR_RESOURCES;
  std::vector<std::unique_ptr<const HalvenorUrl>> urls;
};

State& TheState() {
  static State& state = *new State;
  return state;
}

} // namespace

void SetResourcesFolder(std::string path) {
  const std::lock_guard lock(TheState().mutex);
  TheState().folder = std::move(path);
}

std::int64_t LiveReferences() {
  const std::lock_guard lock(TheState().mutex);
  return static_cast<std::int64_t>(TheState().urls.size());
}

void ResetBundle() {
  SetResourcesFolder(HALVENOR_RESOURCES);
  const std::lock_guard lock(TheState().mutex);
  TheState().urls.clear();
}

} // namespace halvenor::stand_ins

using namespace halvenor::stand_ins;

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
  if (Enter(Function::CFBundleGetBundleWithIdentifier) != 0) return nullptr;
  return std::strcmp(identifier, halvenor::kBundleIdentifier) == 0 ? &kBundle : nullptr;
}

CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle) {
  if (Enter(Function::CFBundleCopyResourcesDirectoryURL) != 0 || bundle == nullptr) return nullptr;
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  auto url = std::make_unique<const HalvenorUrl>(HalvenorUrl{state.folder});
  return state.urls.emplace_back(std::move(url)).get();
}

bool CFURLGetFileSystemRepresentation(CFURLRef url, bool /*resolveAgainstBase*/, uint8_t* buffer,
                                      ptrdiff_t size) {
  if (Enter(Function::CFURLGetFileSystemRepresentation) != 0 || url == nullptr) return false;
  const auto needed = static_cast<ptrdiff_t>(url->path.size()) + 1;
  if (needed > size) return false;
  std::memcpy(buffer, url->path.c_str(), static_cast<std::size_t>(needed));
  return true;
}

void CFRelease(CFTypeRef reference) {
  (void)Enter(Function::CFRelease);
  State& state = TheState();
  const std::lock_guard lock(state.mutex);
  const auto removed =
      std::erase_if(state.urls, [reference](const auto& url) { return url.get() == reference; });
  if (removed == 0 && reference != nullptr) ReportMisuse("CFRelease of what is not there");
}
