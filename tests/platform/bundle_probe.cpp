// A module that asks for bundles, as the plug-in does.
#include "platform/core_foundation.h"

namespace {

CFBundleRef lastBundle = nullptr;

} // namespace

/// Writes the resources folder of the bundle called `identifier` to `buffer`. 'b': no bundle, 'r':
/// no resources, 's': too short, '+': done.
extern "C" [[gnu::visibility("default")]] char ProbeResources(const char* identifier, char* buffer,
                                                              ptrdiff_t size) {
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(identifier);
  lastBundle = bundle;
  if (bundle == nullptr) return 'b';
  const CFURLRef url = CFBundleCopyResourcesDirectoryURL(bundle);
  if (url == nullptr) return 'r';
  auto* const bytes = reinterpret_cast<uint8_t*>(buffer);
  const bool fits = CFURLGetFileSystemRepresentation(url, true, bytes, size);
  CFRelease(url);
  return fits ? '+' : 's';
}

extern "C" [[gnu::visibility("default")]] CFBundleRef ProbeBundle() {
  return lastBundle;
}
