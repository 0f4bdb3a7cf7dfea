#include "gl/resource_file.h"

#include "gl/diagnostics.h"
#include "platform/core_foundation.h"

#include <cstdint>

namespace halvenor {
namespace {

constexpr std::size_t kPathBufferSize = 512;

} // namespace

ResourceLookup FindResource(const char* fileName, std::string& path) {
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(kBundleIdentifier);
  if (bundle == nullptr) {
    DebugLog("Bad bundle");
    return ResourceLookup::NoFolder;
  }
  const CFURLRef folder = CFBundleCopyResourcesDirectoryURL(bundle);
  if (folder == nullptr) {
    DebugLog("Bad URL");
    return ResourceLookup::NoFolder;
  }
  std::uint8_t buffer[kPathBufferSize];
  const bool fits = CFURLGetFileSystemRepresentation(folder, true, buffer, sizeof buffer);
  CFRelease(folder);
  if (!fits) return ResourceLookup::TooLong;
  path = reinterpret_cast<const char*>(buffer);
  path += '/';
  path += fileName;
  return path.size() < kPathBufferSize ? ResourceLookup::Found : ResourceLookup::TooLong;
}

} // namespace halvenor
