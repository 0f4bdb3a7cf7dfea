// The text files of presets as GLib reads them.
#pragma once

#include "files/released_by.h"

#include <glib.h>

#include <memory>
#include <string>
#include <string_view>

namespace halvenor {

using GlibKeyFile = std::unique_ptr<GKeyFile, ReleasedBy<g_key_file_unref>>;
using GlibError = std::unique_ptr<GError, ReleasedBy<g_error_free>>;
using GlibText = std::unique_ptr<char, ReleasedBy<g_free>>;
using GlibTexts = std::unique_ptr<char*, ReleasedBy<g_strfreev>>;

inline constexpr int kPresetFormat = 1;

/// Whitespace of either end taken off.
std::string_view Trimmed(std::string_view text);

/// Reads `text`, whose group `head` must say "format=1". On failure returns null and leaves in
/// `problem` what is wrong with the file, as the end of a sentence that begins with its name.
GlibKeyFile ParseKeyFile(std::string_view text, const char* head, std::string& problem);

/// A new one with that head.
GlibKeyFile NewKeyFile(const char* head);

std::string TextOf(GKeyFile* file);

} // namespace halvenor
