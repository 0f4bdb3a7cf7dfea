// Fonts by family name, and their characters as bitmaps of one bit a pixel.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace halvenor::agl {

/// One character. Rows go from the bottom up, each padded to whole bytes, leftmost pixel in the
/// highest bit.
struct Glyph {
  int width = 0;
  int height = 0;
  int left = 0;    ///< pixels from the pen to the left column
  int bottom = 0;  ///< pixels from the base line up to the bottom row
  int advance = 0; ///< pixels that the pen moves on
  std::vector<std::uint8_t> rows;
};

/// The number, above 0, of the family called `name` (UTF-8) or of its nearest relative; 0 when
/// there is no font. The first call for a name asks fontconfig, later ones a table. Any thread.
std::int16_t FindFamily(const std::string& name);

/// Characters `first`... (Mac OS Roman, within 0 to 255) of a family in its plain style, `size`
/// pixels high (1 to 512). Control characters are empty. Nothing when the family's number is
/// unknown or its font cannot be read; the reason is logged. Any thread.
std::optional<std::vector<Glyph>> DrawGlyphs(int family, int size, int first, int count);

} // namespace halvenor::agl
