// Text from anywhere, made fit to be shown.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace halvenor {

/// The limit for a name or a title within a message.
inline constexpr std::size_t kShownCharacters = 300;
/// The limit for a whole message, which may hold long paths: it is cut only when it is hostile.
inline constexpr std::size_t kMessageCharacters = 8000;

/// `text` as one line of UTF-8 for a terminal or a window, at most `limit` characters; a longer one
/// ends in "…". Control characters (escape sequences, line ends, tabs) and marks that turn the
/// direction of writing become blanks, blanks in a row become one, those at the ends are removed,
/// and what is not UTF-8 becomes U+FFFD. Any thread.
std::string Printable(std::string_view text, std::size_t limit = kShownCharacters);

/// Whether `text` is UTF-8 throughout.
bool IsUtf8(std::string_view text);

} // namespace halvenor
