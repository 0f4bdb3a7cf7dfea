#include "tests/stand_ins/bundle_stand_in.h"

#include "gl/resource_file.h"
#include "platform/core_foundation.h"
#include "protocol/configuration_entries.h"
#include "tests/stand_ins/recording.h"

#include <algorithm>
#include <cstring>
#include <map>
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
constexpr HalvenorBundle kConfiguration;
constexpr char kFrameworks[] = "Frameworks";

Status DoNothing() {
  return status::kOk;
}
Status InitializeNothing(ConfigurationCallback, VisualPluginData*) {
  return status::kOk;
}

std::map<std::string, void*, std::less<>> UsualExports() {
  auto* const action = reinterpret_cast<void*>(DoNothing);
  return {{configuration_entry::kInitialize, reinterpret_cast<void*>(InitializeNothing)},
          {configuration_entry::kOrderWindowFront, action},
          {configuration_entry::kAddPreset, action},
          {configuration_entry::kSwitchToManual, action},
          {configuration_entry::kLogSettings, action}};
}

struct State {
  std::string folder = HALVENOR_RESOURCES;
  std::vector<std::unique_ptr<const HalvenorUrl>> urls;
  std::map<std::string, void*, std::less<>> exports = UsualExports();
  bool loaded = false;
};

/// The state, locked as long as this is there.
class Locked {
public:
  State* operator->() { return &state_; }
  State& operator*() { return state_; }

private:
  static inline std::mutex& mutex_ = *new std::mutex;
  static inline State& state_ = *new State;
  const std::lock_guard<std::mutex> lock_{mutex_};
};

CFURLRef CopyUrl(std::string path) {
  auto url = std::make_unique<const HalvenorUrl>(HalvenorUrl{std::move(path)});
  return Locked()->urls.emplace_back(std::move(url)).get();
}

} // namespace

void SetResourcesFolder(std::string path) {
  Locked()->folder = std::move(path);
}

void SetExport(std::string name, void* function) {
  Locked()->exports[std::move(name)] = function;
}

std::int64_t LiveReferences() {
  return static_cast<std::int64_t>(Locked()->urls.size());
}

void ResetBundle() {
  *Locked() = State();
}

} // namespace halvenor::stand_ins

using namespace halvenor;
using namespace halvenor::stand_ins;

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
  if (Enter(Function::CFBundleGetBundleWithIdentifier) != 0) return nullptr;
  return std::strcmp(identifier, kBundleIdentifier) == 0 ? &kBundle : nullptr;
}

CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle) {
  if (Enter(Function::CFBundleCopyResourcesDirectoryURL) != 0 || bundle == nullptr) return nullptr;
  const std::string folder = Locked()->folder;
  return CopyUrl(folder);
}

CFURLRef CFBundleCopyPrivateFrameworksURL(CFBundleRef bundle) {
  if (Enter(Function::CFBundleCopyPrivateFrameworksURL) != 0 || bundle != &kBundle) return nullptr;
  return CopyUrl(kFrameworks);
}

CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef /*allocator*/, CFURLRef url,
                                               CFStringRef component, bool isDirectory) {
  if (Enter(Function::CFURLCreateCopyAppendingPathComponent) != 0 || url == nullptr) return nullptr;
  return CopyUrl(url->path + '/' + component + (isDirectory ? "/" : ""));
}

CFBundleRef CFBundleCreate(CFAllocatorRef /*allocator*/, CFURLRef url) {
  if (Enter(Function::CFBundleCreate) != 0 || url == nullptr) return nullptr;
  static const std::string path = std::string(kFrameworks) + '/' + kConfigurationBundleName;
  return url->path == path ? &kConfiguration : nullptr;
}

bool CFBundleLoadExecutable(CFBundleRef bundle) {
  if (Enter(Function::CFBundleLoadExecutable) != 0 || bundle != &kConfiguration) return false;
  return Locked()->loaded = true;
}

void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name) {
  if (Enter(Function::CFBundleGetFunctionPointerForName) != 0 || bundle != &kConfiguration)
    return nullptr;
  Locked state;
  const auto found = state->exports.find(name);
  return state->loaded && found != state->exports.end() ? found->second : nullptr;
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
  const auto removed = std::erase_if(
      Locked()->urls, [reference](const auto& url) { return url.get() == reference; });
  if (removed == 0 && reference != nullptr) ReportMisuse("CFRelease of what is not there");
}
