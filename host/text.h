// Text on its way across the host boundary: one byte a character, Mac OS Roman.
#pragma once

#include <string>
#include <string_view>

namespace halvenor {

/// The longest text that a length-prefixed string holds, bytes.
inline constexpr std::size_t kMaxPascalText = 255;

/// `utf8` in Mac OS Roman. What the encoding lacks is transliterated (kana, Cyrillic, Greek, ... to
/// Latin letters, typographic marks to plain ones) and otherwise becomes "?"; control characters,
/// line ends among them, become blanks and invalid bytes "?". Cut at `limit` bytes between
/// characters as a reader sees them. Any thread.
std::string ToMacRoman(std::string_view utf8, std::size_t limit = kMaxPascalText);

/// `text` (Mac OS Roman) in UTF-8. Any thread.
std::string FromMacRoman(std::string_view text);

} // namespace halvenor
