// Bundles and their folders under the names by which the plug-in knows them.
//
// A bundle is a folder with `Contents/Info.plist`, the module in `Contents/Linux/` and its files in
// `Contents/Resources/`. Functions with "Copy" in their name give a reference to release with
// `CFRelease`; those with "Get" do not. Any thread.
#pragma once

#include "platform/export.h"

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const void* CFTypeRef;
typedef const char* CFStringRef;
typedef const struct HalvenorBundle* CFBundleRef;
typedef const struct HalvenorUrl* CFURLRef;

/// The bundle called `identifier` that the calling module belongs to, found from that module's own
/// file upwards; null when the module lies in no such bundle. Valid for the life of the process.
HALVENOR_PLATFORM CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier);

/// The bundle's folder of resources; null when it has none.
HALVENOR_PLATFORM CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle);

/// Writes the path of `url`, absolute when `resolveAgainstBase`, with its terminating zero to
/// `buffer`. False, with `buffer` untouched, when `size` bytes do not hold it.
HALVENOR_PLATFORM bool CFURLGetFileSystemRepresentation(CFURLRef url, bool resolveAgainstBase,
                                                        uint8_t* buffer, ptrdiff_t size);

/// Gives a copied reference back; null is allowed.
HALVENOR_PLATFORM void CFRelease(CFTypeRef reference);

#ifdef __cplusplus
}
#endif
