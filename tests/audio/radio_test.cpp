#include "audio/media_player.h"
#include "tests/support/radio_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace halvenor {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

class RadioTest : public testing::Test, protected MediaPlayer::Listener {
protected:
  void Started(const MediaTags& tags) override {
    told.push_back("started " + tags.title);
    startedAt = player.Position();
  }
  void TagsChanged(const MediaTags& /*tags*/) override {}
  void StreamTagsChanged(const StreamTags& tags) override {
    if (!tags.title.empty()) titles.push_back(tags.title);
  }
  void Record(const RenderVisualData& record) override {
    loud += record.spectrum[0][12] > 200 ? 1 : 0;
  }
  void Ended() override { told.emplace_back("ended"); }
  void Failed(const std::string& error) override { told.push_back("failed " + error); }
  void Reconnecting(const std::string& reason) override { told.push_back("lost " + reason); }

  void Open(const std::string& ways) {
    address = radio.Address(ways);
    player.Open(address);
  }
  bool Until(const std::function<bool()>& done) {
    return Eventually([&] {
      player.Poll();
      return done();
    });
  }

  RadioServer radio;
  std::string address;
  std::vector<std::string> told, titles;
  int loud = 0;
  double startedAt = 0; // seconds
  MediaPlayer player{*this, "fakesink sync=true"};
};

TEST_F(RadioTest, TitlesComeWithTheSound) {
  Open("good");
  ASSERT_TRUE(Until([&] { return titles.size() >= 3 && loud >= 20; }));
  EXPECT_THAT(told, ElementsAre("started Loopback FM"));
  EXPECT_EQ(titles[0], "Someone - Song 0");
  EXPECT_EQ(titles[1], "Someone - Song 1");
  EXPECT_FALSE(player.Length());
  EXPECT_FALSE(player.CanSeek());
  player.Pause();
  ASSERT_TRUE(Until([&] { return player.CurrentState() == MediaPlayer::State::Paused; }));
  player.Play();
  const int before = loud;
  ASSERT_TRUE(Until([&] { return loud > before + 5; }));
}

TEST_F(RadioTest, WhatItSaysOfItselfIsNotTrusted) {
  Open("lie");
  EXPECT_TRUE(Until([&] { return loud >= 3; })) << "sound called a picture";
  Open("long");
  titles.clear();
  ASSERT_TRUE(Until([&] { return !titles.empty() && titles.back().starts_with("Long"); }))
      << testing::PrintToString(titles);
  EXPECT_LE(titles.back().size(), 1000U);
  EXPECT_THAT(titles.back(), Each(AllOf(testing::Ne('\x01'), testing::Ne('\n'))));
}

TEST_F(RadioTest, WhatNeverPlayedFailsWithAWord) {
  struct Case {
    std::string ways, word;
  };
  for (const auto& [ways, word] :
       {Case{"gone", "cannot be found (HTTP 404)"}, Case{"page", "is a web page, not sound"}}) {
    told.clear();
    Open(ways);
    ASSERT_TRUE(Until([&] { return !told.empty(); })) << ways;
    EXPECT_THAT(told, ElementsAre("failed " + address + ": " + word));
  }
  radio.Kill();
  told.clear();
  Open("good");
  ASSERT_TRUE(Until([&] { return !told.empty(); }));
  EXPECT_THAT(told[0], HasSubstr("failed " + address));
}

TEST_F(RadioTest, WhatIsLostIsTriedAgain) {
  struct Case {
    std::string ways, word;
  };
  for (const auto& [ways, word] :
       {Case{"short,gone,good", "the stream has ended"}, Case{"drop,good", ""},
        Case{"stall,good", "nothing came for 10 seconds"}}) {
    told.clear();
    Open(ways);
    ASSERT_TRUE(Until([&] { return told.size() > 1; })) << ways;
    EXPECT_THAT(told[1], HasSubstr("lost " + address + ": " + word));
    EXPECT_EQ(player.CurrentState(), MediaPlayer::State::Playing);
    ASSERT_TRUE(Until([&] { return told.back() == "started Loopback FM"; })) << ways;
    const int before = loud;
    EXPECT_TRUE(Until([&] { return loud > before + 20; })) << ways;
    if (ways.find("gone") != std::string::npos) {
      EXPECT_THAT(told, ElementsAre("started Loopback FM", testing::_, HasSubstr("404"),
                                    "started Loopback FM"));
    }
  }
}

TEST_F(RadioTest, AFileIsPlayedOnWhereItWasLost) {
  Open("cut,gone,gone,file");
  ASSERT_TRUE(Until([&] { return told.size() > 1; }));
  const double lostAt = player.Position();
  EXPECT_TRUE(Until([&] { return told.size() > 3; }));
  EXPECT_THAT(told, ElementsAre(HasSubstr("started"), HasSubstr("lost"), HasSubstr("404"),
                                HasSubstr("started")));
  EXPECT_NEAR(startedAt, lostAt, 0.2);
  EXPECT_GT(startedAt, 0.5);

  // Where the server knows no places it begins again, once. Then all of it is there long before it
  // is heard.
  told.clear();
  Open("whole");
  ASSERT_TRUE(Until([&] { return player.CanSeek() && player.Position() > 0; }));
  player.Seek(3);
  ASSERT_TRUE(Until([&] { return told.back() == "ended"; })) << testing::PrintToString(told);
  EXPECT_THAT(told,
              ElementsAre(HasSubstr("started"), HasSubstr("lost"), HasSubstr("started"), "ended"));
  EXPECT_LT(startedAt, 0.5);
  EXPECT_FALSE(player.CanSeek());
}

} // namespace
} // namespace halvenor
