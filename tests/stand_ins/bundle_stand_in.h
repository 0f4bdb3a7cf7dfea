// The stand-in for platform/core_foundation.h: one bundle, the plug-in's, for any caller. Its calls
// are counted and not recorded.
//
// Faults by `Fail`, with any error: no bundle ("CFBundleGetBundleWithIdentifier"), no resources
// ("CFBundleCopyResourcesDirectoryURL"), a path that does not fit
// ("CFURLGetFileSystemRepresentation"; so does a long folder). Giving back what is not there is a
// misuse.
#pragma once

#include <cstdint>
#include <string>

namespace halvenor::stand_ins {

/// The bundle's resources from now on, until `Reset`; it need not exist. At the start they are the
/// source tree's.
void SetResourcesFolder(std::string path);

/// References that were copied and not given back.
[[nodiscard]] std::int64_t LiveReferences();

} // namespace halvenor::stand_ins
