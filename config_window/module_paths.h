// Where the pieces around this module lie.
#pragma once

#include <filesystem>

namespace halvenor {

/// The plug-in's bundle, in whose private frameworks folder this module's own lies.
std::filesystem::path PluginBundlePath();

/// A program of ours: beside the running one, else in the tree that the plug-in's bundle lies in.
/// Empty when there is none.
std::filesystem::path ProgramPath(const char* name);

} // namespace halvenor
