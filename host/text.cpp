#include "host/text.h"

#include "files/released_by.h"

#include <unicode/normalizer2.h>
#include <unicode/translit.h>
#include <unicode/ucnv.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

namespace halvenor {
namespace {

using Converter = std::unique_ptr<UConverter, ReleasedBy<ucnv_close>>;

Converter OpenMacRoman() {
  UErrorCode failed = U_ZERO_ERROR;
  Converter converter(ucnv_open("macintosh", &failed));
  if (converter) ucnv_setSubstChars(converter.get(), "?", 1, &failed);
  return converter;
}

// All characters that Mac OS Roman lacks.
icu::UnicodeSet Unencodable() {
  UErrorCode failed = U_ZERO_ERROR;
  icu::UnicodeSet set;
  if (const Converter converter = OpenMacRoman())
    ucnv_getUnicodeSet(converter.get(), set.toUSet(), UCNV_ROUNDTRIP_SET, &failed);
  return set.complement();
}

// Transliterates characters that Mac OS Roman lacks and keeps the others.
class Romaniser {
public:
  Romaniser() : unencodable_(Unencodable()), greek_(u"[:Greek:]", failed_) {
    icu::UnicodeString lacking;
    unencodable_.toPattern(lacking, true);
    // Mac OS Roman has a few Greek letters as mathematical signs. They go with the rest of a Greek
    // word, but a lone pi stays a pi.
    // A filter on the very first step would hold for all of them: hence the step that does nothing.
    const icu::UnicodeString cyrillic = u"Null; @ Russian-Latin/BGN;";
    const icu::UnicodeString rest = u" Any-Latin; NFC; @ NFKC; @ Latin-ASCII; @ NFD;"
                                    u"[[:Mn:][:Me:][:Default_Ignorable_Code_Point:]] Remove; NFC";
    plain_ = Build(cyrillic + u"@" + rest, lacking);
    withGreek_ = Build(cyrillic + u"[@[:Greek:]]" + rest, lacking);
  }

  void Apply(icu::UnicodeString& text) {
    if (unencodable_.containsNone(text)) return;
    icu::UnicodeSet lacking;
    lacking.addAll(text).retainAll(unencodable_);
    const bool hasGreekWord = lacking.containsSome(greek_);
    const auto& rules = hasGreekWord ? withGreek_ : plain_;
    const std::scoped_lock lock(mutex_);
    if (rules) rules->transliterate(text);
  }

private:
  // `id` with every "@" replaced by the pattern `lacking`.
  std::unique_ptr<icu::Transliterator> Build(icu::UnicodeString id,
                                             const icu::UnicodeString& lacking) {
    id.findAndReplace(u"@", lacking);
    return std::unique_ptr<icu::Transliterator>(
        icu::Transliterator::createInstance(id, UTRANS_FORWARD, failed_));
  }

  UErrorCode failed_ = U_ZERO_ERROR;
  const icu::UnicodeSet unencodable_;
  const icu::UnicodeSet greek_;
  std::unique_ptr<icu::Transliterator> plain_;
  std::unique_ptr<icu::Transliterator> withGreek_;
  std::mutex mutex_;
};

icu::UnicodeString Compose(const icu::UnicodeString& text) {
  UErrorCode failed = U_ZERO_ERROR;
  const icu::Normalizer2* const composer = icu::Normalizer2::getNFCInstance(failed);
  return U_SUCCESS(failed) ? composer->normalize(text, failed) : text;
}

bool IsLineEndOrControl(char16_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
}

} // namespace

std::string ToMacRoman(std::string_view utf8, std::size_t limit) {
  // Titles beyond this length are cut anyway; the bound keeps hostile ones cheap.
  constexpr std::size_t kMaxInput = 8192;
  utf8 = utf8.substr(0, kMaxInput);
  icu::UnicodeString text =
      Compose(icu::UnicodeString::fromUTF8({utf8.data(), static_cast<std::int32_t>(utf8.size())}));
  for (std::int32_t i = 0; i < text.length(); ++i) {
    if (IsLineEndOrControl(text[i])) text.setCharAt(i, u' ');
  }
  static Romaniser romaniser;
  romaniser.Apply(text);

  const Converter converter = OpenMacRoman();
  if (!converter) return {};
  // One byte a code unit at most: the encoding has no characters beyond the basic plane.
  std::string bytes(static_cast<std::size_t>(text.length()) + 1, '\0');
  UErrorCode failed = U_ZERO_ERROR;
  const std::int32_t size =
      ucnv_fromUChars(converter.get(), bytes.data(), static_cast<std::int32_t>(bytes.size()),
                      text.getBuffer(), text.length(), &failed);
  if (U_FAILURE(failed)) return {};
  bytes.resize(std::min(static_cast<std::size_t>(size), limit));
  return bytes;
}

std::string FromMacRoman(std::string_view text) {
  const Converter converter = OpenMacRoman();
  if (!converter) return {};
  std::vector<UChar> units(text.size() + 1);
  UErrorCode failed = U_ZERO_ERROR;
  const std::int32_t size =
      ucnv_toUChars(converter.get(), units.data(), static_cast<std::int32_t>(units.size()),
                    text.data(), static_cast<std::int32_t>(text.size()), &failed);
  std::string utf8;
  return U_FAILURE(failed) ? utf8 : icu::UnicodeString(units.data(), size).toUTF8String(utf8);
}

} // namespace halvenor
