#include "host/text.h"
#include "host/track_records.h"

#include <gtest/gtest.h>

#include <string>

namespace halvenor {
namespace {

TEST(Text, BecomesMacRomanThatCanBeRead) {
  const struct {
    const char* utf8;
    const char* macRoman;
  } cases[] = {
      {"", ""},
      {"plain ASCII ~", "plain ASCII ~"},
      {"Café \u201Cnaïve\u201D \u2026", "Caf\x8E \xD2na\x95ve\xD3 \xC9"},
      {"Cafe\u0301", "Caf\x8E"}, // composed first
      {"Пётр Щедрин", "P\x91tr Shchedrin"},
      {"サカナクション", "sakanakushon"},
      {"서울", "seoul"},
      {"Απόλλων π", "Ap\x97llon p"}, // all of a Greek title, not half of it
      {"π = 3", "\xB9 = 3"},         // but a sign stays a sign
      {"Łódź", "L\x97"
               "dz"},
      {"ＡＢＣ №5", "ABC No5"},
      {"\u200B\uFEFFinvisible", "invisible"},
      {"\U0001F3B5 song", "? song"},
      {"one\ntwo\ttab\x7F"
       "\u0085\u2028end",
       "one two tab   end"},
      {"bad \xFF\xC3 bytes", "bad ?? bytes"},
      {"cut \xE2\x82", "cut ?"},
  };
  for (const auto& [utf8, macRoman] : cases)
    EXPECT_EQ(ToMacRoman(utf8), macRoman) << utf8;
}

TEST(Text, IsCutAfterTransliteration) {
  EXPECT_EQ(ToMacRoman(std::string(300, 'x')).size(), kMaxPascalText);
  EXPECT_EQ(ToMacRoman("Щука", 5), "Shchu");
  std::string accents;
  for (int i = 0; i < 300; ++i)
    accents += "e\u0301"; // three bytes each
  EXPECT_EQ(ToMacRoman(accents), std::string(kMaxPascalText, '\x8E'));
}

TEST(Text, EveryMacRomanByteComesBack) {
  std::string all;
  for (int byte = 0x20; byte < 0x100; ++byte)
    if (byte != 0x7F) all += static_cast<char>(byte);
  EXPECT_EQ(ToMacRoman(FromMacRoman(all)), all);
}

std::string PascalTextAt(const std::uint8_t* bytes) {
  return {reinterpret_cast<const char*>(bytes) + 1, bytes[0]};
}

TEST(TrackRecords, HoldTheirTexts) {
  const std::string longTitle(400, 't');
  const TrackInfo track = MakeTrackInfo(longTitle, "Björk");
  EXPECT_EQ(PascalTextAt(track.bytes + 8), longTitle.substr(0, 255));
  EXPECT_EQ(PascalTextAt(track.bytes + 520), "Bj\x9Ark");
  EXPECT_EQ(PascalTextAt(MakeStreamInfo("Radio").bytes + 4), "Radio");
  TrackRecords untagged = MakeTrackRecords("06", "");
  EXPECT_EQ(untagged.Track(), nullptr) << "would be shown with a dash at its end";
  EXPECT_EQ(PascalTextAt(untagged.Stream()->bytes + 4), "06");
}

} // namespace
} // namespace halvenor
