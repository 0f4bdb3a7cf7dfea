#include "platform/glyph_bitmaps.h"

#include "files/released_by.h"
#include "platform/agl_errors.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <unicode/ucnv.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <memory>
#include <mutex>
#include <numeric>

namespace halvenor::agl {
namespace {

struct Family {
  std::string name; ///< as asked for
  std::string file; ///< empty when there is no font
  int index = 0;    ///< of the face in the file
};

struct Families {
  std::mutex lock;
  std::vector<Family> list; ///< family number n is entry n - 1
};

Families& KnownFamilies() {
  static Families families;
  return families;
}

using Pattern = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;
using FontSet = std::unique_ptr<FcFontSet, decltype(&FcFontSetDestroy)>;

Pattern PlainStyle(const std::string& name) {
  Pattern wanted(FcPatternCreate(), &FcPatternDestroy);
  FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(name.c_str()));
  FcPatternAddInteger(wanted.get(), FC_WEIGHT, FC_WEIGHT_REGULAR);
  FcPatternAddInteger(wanted.get(), FC_SLANT, FC_SLANT_ROMAN);
  FcPatternAddBool(wanted.get(), FC_OUTLINE, FcTrue);
  FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
  FcDefaultSubstitute(wanted.get());
  return wanted;
}

/// The installed fonts with instructions for small sizes.
FontSet HintedFonts() {
  FontSet hinted(FcFontSetCreate(), &FcFontSetDestroy);
  const FcFontSet* all = FcConfigGetFonts(nullptr, FcSetSystem);
  for (int i = 0; all != nullptr && i < all->nfont; ++i) {
    FcBool hasHints = FcFalse;
    FcPatternGetBool(all->fonts[i], FC_FONT_HAS_HINT, 0, &hasHints);
    if (!hasHints) continue;
    FcPatternReference(all->fonts[i]);
    FcFontSetAdd(hinted.get(), all->fonts[i]);
  }
  return hinted;
}

/// The nearest hinted relative, or else the nearest of all: without hints, characters of 9 pixels
/// in black and white lose their dots and bars.
Family Match(const std::string& name) {
  Family family{name, {}, 0};
  if (!FcInit()) return family;
  const Pattern wanted = PlainStyle(name);
  const FontSet hinted = HintedFonts();
  FcFontSet* sets[] = {hinted.get()};
  FcResult result = FcResultNoMatch;
  Pattern found(FcFontSetMatch(nullptr, sets, 1, wanted.get(), &result), &FcPatternDestroy);
  if (!found) found.reset(FcFontMatch(nullptr, wanted.get(), &result));
  FcChar8* file = nullptr;
  if (found && FcPatternGetString(found.get(), FC_FILE, 0, &file) == FcResultMatch) {
    family.file = reinterpret_cast<const char*>(file);
    FcPatternGetInteger(found.get(), FC_INDEX, 0, &family.index);
  }
  return family;
}

/// The library and one face of it.
class Face {
public:
  Face(const Family& family, int size) {
    if (FT_Init_FreeType(&library_) != 0) return;
    if (FT_New_Face(library_, family.file.c_str(), family.index, &face_) != 0) return;
    isReady_ = FT_Set_Pixel_Sizes(face_, 0, static_cast<FT_UInt>(size)) == 0;
  }
  ~Face() {
    if (face_ != nullptr) FT_Done_Face(face_);
    if (library_ != nullptr) FT_Done_FreeType(library_);
  }
  Face(const Face&) = delete;
  Face& operator=(const Face&) = delete;

  [[nodiscard]] bool IsReady() const { return isReady_; }

  /// An empty glyph when the font cannot draw it.
  [[nodiscard]] Glyph Draw(char32_t character) const {
    Glyph glyph;
    const FT_UInt index = FT_Get_Char_Index(face_, character);
    if (FT_Load_Glyph(face_, index, FT_LOAD_RENDER | FT_LOAD_TARGET_MONO) != 0) return glyph;
    const FT_GlyphSlot slot = face_->glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    glyph.advance = static_cast<int>((slot->advance.x + 32) >> 6);
    glyph.width = static_cast<int>(bitmap.width);
    glyph.height = static_cast<int>(bitmap.rows);
    glyph.left = slot->bitmap_left;
    glyph.bottom = slot->bitmap_top - glyph.height;
    const auto bytes = (bitmap.width + 7) / 8;
    for (unsigned row = bitmap.rows; row-- > 0;) {
      const auto* pixels = bitmap.buffer + static_cast<std::ptrdiff_t>(row) * bitmap.pitch;
      glyph.rows.insert(glyph.rows.end(), pixels, pixels + bytes);
    }
    return glyph;
  }

private:
  FT_Library library_ = nullptr;
  FT_Face face_ = nullptr;
  bool isReady_ = false;
};

bool IsControl(int character) {
  return character < 32 || character == 127;
}

constexpr int kCharacters = 256;
using MacRomanTable = std::array<UChar, kCharacters>; // all lie in the basic plane

MacRomanTable MakeMacRomanTable() {
  std::array<char, kCharacters> bytes{};
  std::iota(bytes.begin(), bytes.end(), '\0');
  MacRomanTable table{};
  UErrorCode failed = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, ReleasedBy<ucnv_close>> converter(
      ucnv_open("macintosh", &failed));
  ucnv_toUChars(converter.get(), table.data(), kCharacters, bytes.data(), kCharacters, &failed);
  return table;
}

char32_t ToUnicode(int character) {
  static const MacRomanTable table = MakeMacRomanTable();
  return table.at(static_cast<std::size_t>(character));
}

} // namespace

std::int16_t FindFamily(const std::string& name) {
  Families& families = KnownFamilies();
  const std::scoped_lock locked(families.lock);
  auto family = std::find_if(families.list.begin(), families.list.end(),
                             [&](const Family& known) { return known.name == name; });
  if (family == families.list.end()) {
    if (families.list.size() >= std::numeric_limits<std::int16_t>::max()) return 0;
    family = families.list.insert(families.list.end(), Match(name));
    if (family->file.empty()) Log("no font is installed that could stand for \"" + name + "\"");
  }
  if (family->file.empty()) return 0;
  return static_cast<std::int16_t>(family - families.list.begin() + 1);
}

std::optional<std::vector<Glyph>> DrawGlyphs(int family, int size, int first, int count) {
  Family font;
  {
    Families& families = KnownFamilies();
    const std::scoped_lock locked(families.lock);
    if (family < 1 || static_cast<std::size_t>(family) > families.list.size()) return std::nullopt;
    font = families.list[static_cast<std::size_t>(family) - 1];
  }
  const Face face(font, size);
  if (!face.IsReady()) {
    Log("cannot read the font " + font.file);
    return std::nullopt;
  }
  std::vector<Glyph> glyphs;
  glyphs.reserve(static_cast<std::size_t>(count));
  for (int character = first; character < first + count; ++character)
    glyphs.push_back(IsControl(character) ? Glyph() : face.Draw(ToUnicode(character)));
  return glyphs;
}

} // namespace halvenor::agl
