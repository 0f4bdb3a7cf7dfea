// What a key press means to a plug-in.
#pragma once

#include <QtGui/QKeyEvent>

#include <optional>

namespace halvenor {

/// The character code of a key press: Mac OS Roman, with that system's codes for the keys that
/// print nothing (arrows, return, delete, ...). Nothing for keys without a character, for keys held
/// with Ctrl, Alt or Meta, which are commands of a desktop, and for characters that the encoding
/// lacks.
std::optional<char> PluginCharacter(const QKeyEvent& event);

} // namespace halvenor
