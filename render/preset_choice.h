// The presets that the command line asks for.
#pragma once

#include "protocol/settings.h"

#include <filesystem>
#include <optional>
#include <string>

namespace halvenor::render {

/// The look of `wish`: a file (FILE or FILE#NAME, when there is a "/" or a ".preset") or the name
/// of one of the person's presets or of those that came with `plugin`, a bundle or its module. On
/// failure returns nothing and leaves one line in `error`.
std::optional<Settings> ChoosePreset(const std::string& wish, const std::filesystem::path& plugin,
                                     std::string& error);

/// Prints the presets to standard output, a line each, its name first, and what could not be read
/// to standard error. False when standard output takes no more.
bool ListPresets(const std::filesystem::path& plugin);

} // namespace halvenor::render
