#include "files/printable.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <locale>

namespace halvenor {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kEllipsis = 0x2026;

class Utf8 : public std::codecvt<char32_t, char8_t, std::mbstate_t> {};

const Utf8& Codec() {
  static const Utf8 codec;
  return codec;
}

// Takes the first character off `text`, which is not empty. What is not UTF-8 counts as characters
// of one byte each.
char32_t TakeCharacter(std::string_view& text) {
  constexpr std::size_t kLongest = 4;
  const auto* const begin = reinterpret_cast<const char8_t*>(text.data());
  const char8_t* end = begin;
  char32_t character = 0;
  char32_t* filled = &character;
  std::mbstate_t state{};
  Codec().in(state, begin, begin + std::min(text.size(), kLongest), end, &character, &character + 1,
             filled);
  const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
  if (filled == &character || isSurrogate) {
    text.remove_prefix(1);
    return kReplacement;
  }
  text.remove_prefix(static_cast<std::size_t>(end - begin));
  return character;
}

void Append(std::string& text, char32_t character) {
  char8_t bytes[4];
  const char32_t* taken = &character;
  char8_t* end = bytes;
  std::mbstate_t state{};
  Codec().out(state, &character, &character + 1, taken, bytes, std::end(bytes), end);
  text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(end - bytes));
}

struct Range {
  char32_t first;
  char32_t last;
};
constexpr Range kBlanks[] = {
    {0x00, 0x20},     {0x7F, 0x9F},     // control characters
    {0x2028, 0x2029},                   // line ends
    {0x061C, 0x061C}, {0x200E, 0x200F}, // marks of direction, embeddings, isolates
    {0x202A, 0x202E}, {0x2066, 0x2069},
};

bool IsBlank(char32_t character) {
  for (const Range& range : kBlanks)
    if (character >= range.first && character <= range.last) return true;
  return false;
}

} // namespace

std::string Printable(std::string_view text, std::size_t limit) {
  std::string line;
  std::size_t characters = 0;
  std::size_t room = 0; // how much of the line leaves room for an ellipsis
  bool blank = false;
  while (!text.empty()) {
    const char32_t character = TakeCharacter(text);
    if (IsBlank(character)) {
      blank = !line.empty();
      continue;
    }
    const std::size_t wanted = blank ? 2 : 1;
    if (characters + wanted > limit) {
      line.resize(room);
      Append(line, kEllipsis);
      return line;
    }
    if (blank) line += ' ';
    Append(line, character);
    characters += wanted;
    if (characters < limit) room = line.size();
    blank = false;
  }
  return line;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const bool isMark = text.starts_with("\xEF\xBF\xBD"); // the replacement itself
    if (TakeCharacter(text) == kReplacement && !isMark) return false;
  }
  return true;
}

} // namespace halvenor
