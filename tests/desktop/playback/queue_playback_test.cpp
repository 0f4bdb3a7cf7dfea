// The queue on the network: what stalls is said, and what does not come is given up.
#include "audio/sound_server.h"
#include "desktop/playback/queue_playback.h"
#include "tests/support/radio_server.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <gtest/gtest.h>

namespace halvenor {
namespace {

class QueuePlaybackTest : public testing::Test {
protected:
  void SetUp() override {
    setenv("PULSE_SERVER", "unix:/nowhere", 1); // NOLINT(concurrency-mt-unsafe)
    player->Media().SetMuted(true);
  }
  QStringList Address(const std::string& way) const {
    return {QString::fromStdString(radio.Address(way))};
  }
  bool Until(const std::function<bool()>& done) {
    return Eventually([&] {
      QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
      server.Poll();
      player->Poll();
      return done();
    });
  }

  RadioServer radio;
  SoundServer server;
  std::unique_ptr<QueuePlayback> player = std::make_unique<QueuePlayback>(server);
};

TEST_F(QueuePlaybackTest, SaysThatNothingComesAndThatItPlaysAgain) {
  int unsettled = 0; // reports that still matter
  QObject::connect(player.get(), &QueuePlayback::Reported, [&] { ++unsettled; });
  QObject::connect(player.get(), &QueuePlayback::Reconnected, [&] { unsettled = 0; });
  for (const char* way : {"stall,good", "cut,gone,gone,file"}) {
    player->Open(Address(way));
    ASSERT_TRUE(Until([&] { return !player->IsOpening(); }));
    EXPECT_FALSE(player->IsStuck());
    if (way[0] == 's') {
      ASSERT_TRUE(Until([&] { return player->IsStuck(); }));
      EXPECT_FALSE(player->IsReconnecting()) << "that takes longer";
    }
    ASSERT_TRUE(Until([&] { return player->IsReconnecting(); }));
    EXPECT_EQ(unsettled, 1);
    ASSERT_TRUE(Until([&] { return !player->IsReconnecting(); }));
    EXPECT_TRUE(player->IsActive());
    EXPECT_FALSE(player->IsStuck());
    EXPECT_EQ(unsettled, 0);
  }
}

TEST_F(QueuePlaybackTest, GivesUpWhatDoesNotCome) {
  player->Open(Address("drip.pls"));
  Until([patience = QDeadlineTimer(1000)] { return patience.hasExpired(); });
  const QDeadlineTimer patience(5000);
  player->Open({QString::fromStdString(radio.Sound())});
  ASSERT_TRUE(Until([&] { return !player->IsOpening(); }));
  player->Open(Address("drip.pls"));
  player.reset();
  EXPECT_FALSE(patience.hasExpired());
}

} // namespace
} // namespace halvenor

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
