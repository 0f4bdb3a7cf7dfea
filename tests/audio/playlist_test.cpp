#include "audio/gst_media.h"
#include "audio/local_files.h"
#include "audio/playlist.h"
#include "audio/sound_kinds.h"
#include "tests/support/scratch_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace halvenor {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PlaylistTest : public testing::Test {
protected:
  PlaylistTest() {
    for (const char* file : {"music/10.flac", "music/9.mp3", "music/.hidden.mp3", "music/cover.jpg",
                             "music/list.m3u", "music/disc 2/Ärger.OGG", "music/disc 10/a.wav"})
      Write(file, "x");
    fs::create_directory_symlink(root / "music", root / "music/disc 2/round");
  }

  std::string Write(const std::string& name, const std::string& bytes) const {
    WriteText(root / name, bytes);
    return root / name;
  }
  /// The entries, "PATH BELOW THE ROOT" or "ADDRESS", and " | TITLE" where there is one.
  [[nodiscard]] std::vector<std::string> Entries(const Playlist& list) const {
    std::vector<std::string> entries;
    for (const auto& [medium, title] : list.entries) {
      const bool below = medium.starts_with(root.string());
      entries.push_back((below ? medium.substr(root.string().size() + 1) : medium) +
                        (title.empty() ? "" : " | " + title));
    }
    return entries;
  }

  const ScratchFolder scratch_;
  const fs::path& root = scratch_.Path();
};

// What a playlist from the network makes a demuxer open, it opens like this.
TEST_F(PlaylistTest, GStreamerOpensNoFileThatWasNotAskedFor) {
  std::string error;
  ASSERT_TRUE(gst_media::Start(error)) << error;
  const auto opens = [](const std::string& uri) {
    return gst_media::Element(gst_element_make_from_uri(GST_URI_SRC, uri.c_str(), nullptr, nullptr))
               .get() != nullptr;
  };
  const std::string path = root / "music/9.mp3";
  EXPECT_FALSE(opens("file://" + path));
  EXPECT_EQ(local_files::TakeRefused(), "file://" + path);
  EXPECT_FALSE(opens("FILE:///etc/passwd"));
  EXPECT_TRUE(opens("http://127.0.0.1/x"));
  ASSERT_TRUE(gst_media::Find(path, error)) << error;
  EXPECT_TRUE(opens("file://" + path));
}

TEST_F(PlaylistTest, SoundIsToldByItsName) {
  for (const char* name : {"a.wav", "A.FLAC", "b.mp3", "c.opus", "d.ogg", "e.m4a", "f.mka", "g.wma",
                           "h.aiff", "x/y.mp4", "wave.wave", "w.wv", "t.tta"})
    EXPECT_TRUE(IsSoundName(name)) << name;
  for (const char* name : {"a.txt", "mp3", ".flac/x", "b.jpg", "c.m3u", "d.mkv", "e.srt", "f.", ""})
    EXPECT_FALSE(IsSoundName(name)) << name;
}

TEST_F(PlaylistTest, AFolderGivesItsSoundInNaturalOrder) {
  const Playlist list = ReadPlaylist(root / "music");
  EXPECT_THAT(Entries(list), ElementsAre("music/9.mp3", "music/10.flac", "music/disc 2/Ärger.OGG",
                                         "music/disc 10/a.wav"));
  EXPECT_THAT(list.problems, IsEmpty());
}

TEST_F(PlaylistTest, EveryFormatGivesItsEntries) {
  struct Case {
    std::string name, text;
    std::vector<std::string> entries;
  };
  const std::string absolute = root / "music/9.mp3";
  for (const auto& [name, text, entries] : {
           Case{"plain.m3u",
                "music/9.mp3\n\n" + absolute + "\nhttp://radio.example/a?b=c\n",
                {"music/9.mp3", "music/9.mp3", "http://radio.example/a?b=c"}},
           Case{"titled.m3u8",
                "\xEF\xBB\xBF#EXTM3U\r\n#EXTINF:12 x=\"y\",Füße, kalt\r\nmusic\\9.mp3\r\n#note\r\n"
                "../" +
                    root.filename().string() + "/music/10.flac\r\n",
                {"music/9.mp3 | Füße, kalt", "music/10.flac"}},
           Case{"latin.m3u",
                "#EXTINF:-1,Stra\xDF"
                "e\nmusic/disc 2/\xC4rger.OGG",
                {"music/disc 2/Ärger.OGG | Straße"}},
           Case{"any.name",
                "#EXTM3U\nfile://" + root.string() + "/music/disc%202/%C3%84rger.OGG\n",
                {"music/disc 2/Ärger.OGG"}},
           Case{"folder.m3u", "#EXTINF:1,Disc\nmusic/disc 10\n", {"music/disc 10/a.wav"}},
           Case{"two.pls",
                "[playlist]\nNumberOfEntries=2\nTitle2=Second\nFile2=music/9.mp3\n"
                "FILE1=https://radio.example/\nLength1=-1\nVersion=2\nFile=x\n",
                {"https://radio.example/", "music/9.mp3 | Second"}},
           Case{"some.xspf",
                "<?xml version=\"1.0\"?><playlist xmlns=\"http://xspf.org/ns/0/\"><title>No</title>"
                "<trackList><track><title>A &amp; B</title><location>music/disc%202/%C3%84rger.OGG"
                "</location></track><track><location>http://radio.example/x</location></track>"
                "</trackList></playlist>",
                {"music/disc 2/Ärger.OGG | A & B", "http://radio.example/x"}},
       }) {
    const Playlist list = ReadPlaylist(Write(name, text));
    EXPECT_EQ(Entries(list), entries) << name;
    EXPECT_THAT(list.problems, IsEmpty()) << name;
  }
  EXPECT_THAT(Entries(ReadPlaylist(absolute)), ElementsAre("music/9.mp3"));
  EXPECT_THAT(Entries(ReadPlaylist("http://x.example/l.m3u")),
              ElementsAre("http://x.example/l.m3u"));
}

TEST_F(PlaylistTest, WhatIsBrokenIsSaidAndTheRestIsTaken) {
  struct Case {
    std::string name, text;
    std::vector<std::string> entries;
    std::vector<std::string> problems; // part of each
  };
  Write("b.m3u", "a.m3u\nb.m3u\nmusic/10.flac\n");
  for (const auto& [name, text, entries, problems] : {
           Case{"a.m3u",
                "music/9.mp3\nb.m3u\n",
                {"music/9.mp3", "music/10.flac"},
                {"a.m3u: names itself", "b.m3u: names itself"}},
           Case{"gone.m3u",
                "nothing.mp3\nmusic/9.mp3\n/dev/zero\nmailto:x\n",
                {"music/9.mp3"},
                {"not there: nothing.mp3", "not there: /dev/zero", "not there: mailto:x"}},
           Case{"binary.m3u", std::string("\0\x80\xff junk", 8), {}, {"is not a playlist"}},
           Case{"late.m3u",
                "music/9.mp3\n" + std::string(2000, 'x') + '\0',
                {},
                {"is not a playlist"}},
           Case{"cut.xspf",
                "<playlist xmlns=\"http://xspf.org/ns/0/\"><trackList><track><location>"
                "music/9.mp3</location></track><track><loca",
                {"music/9.mp3"},
                {"is damaged"}},
       }) {
    const Playlist list = ReadPlaylist(Write(name, text));
    EXPECT_EQ(Entries(list), entries) << name;
    ASSERT_EQ(list.problems.size(), problems.size())
        << name << testing::PrintToString(list.problems);
    for (std::size_t i = 0; i < problems.size(); ++i)
      EXPECT_THAT(list.problems[i], HasSubstr(problems[i]));
  }
}

TEST(FetchedPlaylistTest, NamesAddressesOnly) {
  constexpr char kList[] = "http://radio.example/dir/listen.pls?sid=1";
  struct Case {
    std::string bytes;
    std::vector<std::string> entries;
    std::size_t problems;
  };
  for (const auto& [bytes, entries, problems] : {
           Case{"[playlist]\nFile1=https://a.example/1\nFile2=other\nFile3=/top?x=1\n",
                {"https://a.example/1", "http://radio.example/dir/other",
                 "http://radio.example/top?x=1"},
                0},
           Case{"\xEF\xBB\xBFhttp://a.example/plain\r\nfile:///etc/passwd\nFILE:/etc/passwd\n",
                {"http://a.example/plain"},
                2},
           // A path is one of the server's.
           Case{"/etc/passwd\n../../../etc/passwd\n",
                {"http://radio.example/etc/passwd", "http://radio.example/etc/passwd"},
                0},
           // Played itself: pieces of one stream, sound, a page, nothing.
           Case{"#EXTM3U\n#EXT-X-VERSION:3\npiece.ts\n", {kList}, 0},
           Case{std::string("\xFF\xFB\0\0", 4), {kList}, 0},
           Case{" <!DOCTYPE html><html>no\nlist</html>", {kList}, 0},
           Case{"", {kList}, 0},
       }) {
    const Playlist list = ReadFetchedPlaylist(kList, bytes);
    std::vector<std::string> media;
    for (const PlaylistEntry& entry : list.entries)
      media.push_back(entry.medium);
    EXPECT_EQ(media, entries) << bytes;
    EXPECT_EQ(list.problems.size(), problems) << testing::PrintToString(list.problems);
  }
  for (const char* address : {kList, "https://a/b.M3U", "http://a/b.xspf#c"})
    EXPECT_TRUE(IsPlaylistAddress(address)) << address;
  for (const char* other :
       {"http://a/stream", "http://a/?x=list.pls", "/music/b.m3u", "file:///b.m3u"})
    EXPECT_FALSE(IsPlaylistAddress(other)) << other;
}

TEST_F(PlaylistTest, AMillionEntriesAreBounded) {
  std::string here;
  std::string gone;
  for (int i = 0; i < 1'000'000; ++i) {
    here += "#EXTINF:1,Song\nhttp://radio.example/" + std::to_string(i) + "\n";
    gone += "gone" + std::to_string(i) + ".mp3\n";
  }
  const auto begin = std::chrono::steady_clock::now();
  const Playlist many = ReadPlaylist(Write("many.m3u", here));
  EXPECT_EQ(many.entries.size(), kMostPlaylistEntries);
  EXPECT_THAT(many.problems, ElementsAre(HasSubstr("only the first 100000")));
  const Playlist none = ReadPlaylist(Write("none.m3u", gone));
  EXPECT_THAT(none.entries, IsEmpty());
  EXPECT_LE(none.problems.size(), 12U);
  EXPECT_THAT(none.problems.back(), HasSubstr("Too many missing files"));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

} // namespace
} // namespace halvenor
