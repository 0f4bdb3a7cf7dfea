// Where the pieces of an installation lie, seen from the running program.
#pragma once

#include <filesystem>

namespace halvenor {

/// The folder of the running executable, links resolved. Empty when the system does not say.
std::filesystem::path ExecutableFolder();

/// The plug-in that belongs to this program: `../lib/halvenor/Halvenor.bundle` beside the
/// executable's folder, in build trees and installed trees alike. It may not exist. The current
/// folder has no influence.
std::filesystem::path InstalledPluginPath();

} // namespace halvenor
