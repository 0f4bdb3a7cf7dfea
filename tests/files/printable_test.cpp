#include "files/printable.h"

#include <gtest/gtest.h>

namespace halvenor {
namespace {

using namespace std::string_literals;

TEST(Printable, IsOneHarmlessLine) {
  const std::string note = "\xF0\x9F\x8E\xB5"; // four bytes
  const std::string dots = "\u2026";
  const struct {
    std::string text, shown;
  } cases[] = {
      {"", ""},
      {"Größe, 東京 " + note, "Größe, 東京 " + note},
      {" a\r\n\tb\x1b[31m\0c\x7f "s, "a b [31m c"},
      {"a\u009b\u0085b\u2028c", "a b c"},
      {"a\u202Eb\u2066c\u200F\u061Cd", "a b c d"},
      {"caf\xE9 \xC0\xAF \xED\xA0\x80", "caf\uFFFD \uFFFD\uFFFD \uFFFD\uFFFD\uFFFD"},
      {"cut \xE6\x9D", "cut \uFFFD\uFFFD"},
      {std::string(10, 'x'), std::string(10, 'x')},
      {std::string(1 << 20, 'x'), std::string(9, 'x') + dots},
      {std::string(8, 'x') + note + note + note, std::string(8, 'x') + note + dots},
      {std::string(8, 'x') + " yz", std::string(8, 'x') + dots},
  };
  for (const auto& [text, shown] : cases) {
    constexpr std::size_t kLimit = 15;
    const bool isCut = text.front() == 'x';
    EXPECT_EQ(Printable(text, isCut ? 10 : kLimit), shown) << text.substr(0, 99);
    EXPECT_TRUE(IsUtf8(shown));
    EXPECT_EQ(IsUtf8(text), shown.find("\uFFFD") == shown.npos) << text.substr(0, 99);
  }
}

} // namespace
} // namespace halvenor
