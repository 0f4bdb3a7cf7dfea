// Files that ship in the plug-in's resources folder.
#pragma once

#include <string>

namespace halvenor {

/// The plug-in's own bundle identifier.
inline constexpr char kBundleIdentifier[] = "org.halvenor.visualizer";

enum class ResourceLookup {
  Found,
  NoFolder, ///< the bundle or its folder is missing; "Bad bundle" or "Bad URL" has been logged
  TooLong,  ///< the path has more than 511 bytes
};

/// Writes the path of the resource called `fileName` to `path` when `Found`; whether the file
/// exists is not looked at.
ResourceLookup FindResource(const char* fileName, std::string& path);

} // namespace halvenor
