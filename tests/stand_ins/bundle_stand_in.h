// The stand-in for platform/core_foundation.h: the plug-in's bundle, for any caller, and in it the
// bundle of the configuration window, whose module the suite makes up. Its calls are counted and
// not recorded.
//
// Faults by `Fail`, with any error: no bundle ("CFBundleGetBundleWithIdentifier"), no resources
// ("CFBundleCopyResourcesDirectoryURL"), a path that does not fit
// ("CFURLGetFileSystemRepresentation"; so does a long folder), no configuration bundle
// ("CFBundleCreate"), one that does not load ("CFBundleLoadExecutable"), and so on. Giving back
// what is not there is a misuse.
#pragma once

#include <cstdint>
#include <string>

namespace halvenor::stand_ins {

/// The bundle's resources from now on, until `Reset`; it need not exist. At the start they are the
/// source tree's.
void SetResourcesFolder(std::string path);

/// What the configuration bundle's module exports as `name` from now on, until `Reset`; null:
/// nothing. At the start it has its five entries, which do nothing and return 0.
void SetExport(std::string name, void* function);

/// References that were copied and not given back.
[[nodiscard]] std::int64_t LiveReferences();

} // namespace halvenor::stand_ins
