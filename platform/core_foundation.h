// Bundles and their folders under the names by which the plug-in knows them.
//
// A bundle is a folder with `Contents/Info.plist`, the module in `Contents/Linux/`, its files in
// `Contents/Resources/` and bundles of its own in `Contents/Frameworks/`. URLs that a function with
// "Copy" in its name gives are to be released with `CFRelease`; bundles are valid for the life of
// the process and are not. Any thread.
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
typedef const struct HalvenorAllocator* CFAllocatorRef;

/// The one allocator there is.
static const CFAllocatorRef kCFAllocatorDefault = nullptr;

/// The bundle called `identifier` that the calling module belongs to, found from that module's own
/// file upwards; null when the module lies in no such bundle.
HALVENOR_PLATFORM CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier);

/// The bundle's folder of resources; null when it has none.
HALVENOR_PLATFORM CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle);

/// The bundle's folder of bundles of its own, whether or not it exists; null without a bundle.
HALVENOR_PLATFORM CFURLRef CFBundleCopyPrivateFrameworksURL(CFBundleRef bundle);

/// `url` with `component` appended. Null without either of them.
HALVENOR_PLATFORM CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator,
                                                                 CFURLRef url,
                                                                 CFStringRef component,
                                                                 bool isDirectory);

/// The bundle at `url`: the same one for the same folder, each time. Null when there is no folder
/// or it has no `Contents/Info.plist`, be it that it had one before.
HALVENOR_PLATFORM CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);

/// Loads the bundle's module, which stays loaded: the file in `Contents/Linux/` that Info.plist
/// names under "CFBundleExecutable", else the one called as the folder is without its extension.
/// True when it is loaded, now or before. A module that failed to load is tried anew.
HALVENOR_PLATFORM bool CFBundleLoadExecutable(CFBundleRef bundle);

/// What the loaded module, or a library that it needs, exports as `name`; null when there is no
/// such thing or no module is loaded.
HALVENOR_PLATFORM void* CFBundleGetFunctionPointerForName(CFBundleRef bundle, CFStringRef name);

/// Writes the path of `url`, absolute when `resolveAgainstBase`, with its terminating zero to
/// `buffer`. False, with `buffer` untouched, when `size` bytes do not hold it.
HALVENOR_PLATFORM bool CFURLGetFileSystemRepresentation(CFURLRef url, bool resolveAgainstBase,
                                                        uint8_t* buffer, ptrdiff_t size);

/// Gives a copied URL back; null is allowed.
HALVENOR_PLATFORM void CFRelease(CFTypeRef reference);

#ifdef __cplusplus
}
#endif
