#include "tests/shell/shell_test.h"

namespace halvenor {
namespace {

using testing::ElementsAre;

class Handler : public ShellTest {
protected:
  void SetUp() override {
    ShellTest::SetUp();
    host_.Init();
    host_.requests.clear();
    PutPascal(track_.bytes + kTrackTitleOffset, "A");
    PutPascal(track_.bytes + kTrackArtistOffset, "B");
    PutPascal(stream_.bytes + kStreamTitleOffset, "Radio");
    track_.bytes[kTrackInfoSize - 1] = 1;
    stream_.bytes[kStreamInfoSize - 1] = 1;
  }

  TrackInfo track_{};
  StreamInfo stream_{};
};

TEST_F(Handler, AnswersEachCode) {
  for (const FourCharCode code :
       {Code("null"), Code("setp"), Code("von "), Code("voff"), Code("vupd"), Code("vpau"),
        Code("vunp"), Code("vstp"), Code("hide"), Code("vrnd"), Code("vply"), Code("ctrk"),
        Code("cnfg")})
    EXPECT_EQ(host_.Send(code), 0) << std::hex << code;
  EXPECT_EQ(host_.Send(Code("what")), status::kNotHandled);
  EXPECT_EQ(host_.Send(0), status::kNotHandled);
  EXPECT_NE(host_.SendWindow(message::kSetWindow, nullptr, {}, 0), 0); // nothing is open
}

TEST_F(Handler, EveryMessageSetsTheRecordPointerFirst) {
  VisualMessage none{};
  int anything = 0;
  EXPECT_EQ(VisualPluginHandler(Code("what"), &none, &anything), status::kNotHandled);
  EXPECT_EQ(LastReference(), &anything);
  // Without a record, or with what is none, there is nothing to change.
  void* const record = host_.refCon;
  for (void* reference : {static_cast<void*>(&anything), static_cast<void*>(nullptr)}) {
    host_.refCon = reference;
    for (const FourCharCode code :
         {Code("vrnd"), Code("vply"), Code("ctrk"), Code("vpau"), Code("vstp"), Code("vunp"),
          Code("cnfg"), Code("hide"), Code("null")})
      EXPECT_EQ(host_.Send(code), 0) << std::hex << code;
    EXPECT_EQ(VisualPluginHandler(message::kCleanup, &none, reference), 0);
    EXPECT_EQ(host_.SendEvent(kKeyDownEvent, 'c'), 0);
    EXPECT_EQ(host_.SendEvent(kKeyDownEvent, 'a'), status::kNotHandled);
    EXPECT_EQ(host_.Send(message::kEvent), status::kNotHandled);
  }
  EXPECT_THAT(host_.requests, testing::IsEmpty());
  host_.refCon = record;
  // A message that is not there is not used, nor is a host that cannot be asked.
  for (const FourCharCode code : {message::kInit, message::kShow, message::kRenderData})
    EXPECT_EQ(VisualPluginHandler(code, nullptr, record), status::kNotHandled);
  EXPECT_EQ(VisualPluginHandler(message::kInit, &none, nullptr), status::kNotHandled);
  EXPECT_EQ(none.init.refCon, nullptr);
  EXPECT_EQ(host_.Send(message::kIdle), 0);
  EXPECT_EQ(LastReference(), host_.Record());
}

TEST_F(Handler, PlayShowsALineForEachRecord) {
  VisualPluginData& record = *host_.Record();
  EXPECT_EQ(host_.SendTracks(message::kPlay, &track_, &stream_), 0);
  EXPECT_EQ(*record.trackText, "A - B");
  EXPECT_EQ(*record.streamText, "Radio");
  EXPECT_EQ(record.trackTextTime, 3000);
  EXPECT_EQ(record.streamTextTime, 3000);
  EXPECT_EQ(std::memcmp(&record.trackInfo, &track_, sizeof track_), 0);
  EXPECT_EQ(std::memcmp(&record.streamInfo, &stream_, sizeof stream_), 0);

  // A missing record clears its copy and leaves its line alone.
  record.settings.trackTextDuration = 77;
  PutPascal(track_.bytes + kTrackTitleOffset, "C");
  host_.SendTracks(message::kPlay, &track_, nullptr);
  EXPECT_EQ(*record.trackText, "C - B");
  EXPECT_EQ(record.trackTextTime, 77);
  EXPECT_EQ(*record.streamText, "Radio");
  EXPECT_EQ(record.streamTextTime, 3000);
  EXPECT_EQ(record.streamInfo.bytes[kStreamInfoSize - 1], 0);
  host_.SendTracks(message::kPlay, nullptr, &stream_);
  EXPECT_EQ(record.trackInfo.bytes[kTrackInfoSize - 1], 0);
  EXPECT_EQ(*record.trackText, "C - B");
}

TEST_F(Handler, ChangeOfTrackHasFixedTimesAndTheStreamWins) {
  VisualPluginData& record = *host_.Record();
  record.streamTextTime = 99;
  host_.SendTracks(message::kChangeTrack, &track_, nullptr);
  EXPECT_EQ(record.trackTextTime, 1000);
  EXPECT_EQ(record.streamTextTime, 0);
  host_.SendTracks(message::kChangeTrack, &track_, &stream_);
  EXPECT_EQ(record.trackTextTime, 0);
  EXPECT_EQ(record.streamTextTime, 1000);
  EXPECT_EQ(*record.trackText, "A - B");
  host_.SendTracks(message::kChangeTrack, nullptr, nullptr);
  EXPECT_EQ(record.streamTextTime, 1000);
}

TEST_F(Handler, TitlesOfAnyLengthAndContentFit) {
  const std::string full(255, 'x');
  PutPascal(track_.bytes + kTrackTitleOffset, full);
  PutPascal(track_.bytes + kTrackArtistOffset, std::string("cut\0here", 8));
  host_.SendTracks(message::kPlay, &track_, nullptr);
  EXPECT_EQ(*host_.Record()->trackText, full + " - cut");
  PutPascal(track_.bytes + kTrackTitleOffset, "100%s");
  PutPascal(track_.bytes + kTrackArtistOffset, "");
  host_.SendTracks(message::kPlay, &track_, nullptr);
  EXPECT_EQ(*host_.Record()->trackText, "100%s - ");
}

TEST_F(Handler, DataPauseAndStop) {
  VisualPluginData& record = *host_.Record();
  RenderVisualData data{};
  data.numSpectrumChannels = 2;
  data.spectrum[1][3] = 255;
  EXPECT_EQ(host_.SendData(&data, 4711), 0);
  EXPECT_EQ(record.renderTimeStampID, 4711U);
  EXPECT_EQ(record.smoothedSpectrum[1][3], 89);
  host_.Send(message::kUnpause);
  EXPECT_EQ(record.playing, 1);
  for (const FourCharCode code : {message::kPause, message::kStop}) {
    record.channelLevel[0] = 1.0F;
    record.playing = 1;
    host_.Send(code);
    EXPECT_EQ(record.playing, 0);
    EXPECT_EQ(record.channelLevel[0], 0.0F);
    EXPECT_EQ(record.smoothedSpectrum[1][3], 89);
  }
}

TEST_F(Handler, KeysAreTheLowByteOfTheEventsWord) {
  EXPECT_EQ(host_.Send(message::kEvent), -4);              // without an event
  EXPECT_EQ(host_.SendEvent(kKeyDownEvent, 'y' << 8), -4); // not the second byte
  EXPECT_EQ(host_.SendEvent(1, 'c'), -4);                  // a mouse event
  EXPECT_EQ(host_.SendEvent(kKeyDownEvent, 'C'), -4);
  EXPECT_THAT(host_.requests, testing::IsEmpty());
  EXPECT_EQ(host_.SendEvent(kKeyDownEvent, 0x12345600U | 'c'), 0);
  EXPECT_EQ(host_.SendEvent(kKeyRepeatEvent, 'c'), 0);
  EXPECT_THAT(host_.requests, ElementsAre("sful", "sful"));
  EXPECT_EQ(host_.lastRequest.body.fullScreen.fullScreen, 0);
}

TEST_F(Handler, HideClearsTheRecordsAndKeepsTheLines) {
  host_.SendTracks(message::kPlay, &track_, &stream_);
  EXPECT_EQ(host_.Send(message::kHide), 0); // nothing was shown
  EXPECT_EQ(host_.Record()->trackInfo.bytes[kTrackInfoSize - 1], 0);
  EXPECT_EQ(host_.Record()->streamInfo.bytes[kStreamInfoSize - 1], 0);
  EXPECT_EQ(*host_.Record()->trackText, "A - B");
  EXPECT_EQ(host_.Record()->trackTextTime, 3000);
}

TEST_F(Handler, WindowMessagesCarryTheOptionsAndTheRectangle) {
  HalvenorPort port = stand_ins::OffscreenPort(300, 200);
  clock::UseStepped(1);
  EXPECT_EQ(host_.SendWindow(message::kShow, nullptr, port.bounds, 0), status::kDisplayNotOpened);
  EXPECT_EQ(host_.Show(&port, 6), 0);
  ASSERT_EQ(clock::WaitUntilParked(), clock::StepResult::Frame); // its frame sets viewports, too
  EXPECT_EQ(host_.Record()->windowOptions, 6U);
  EXPECT_EQ(host_.SendWindow(message::kSetWindow, &port, {10, 20, 110, 220}, 1), 0);
  EXPECT_EQ(host_.Record()->windowOptions, 1U);
  EXPECT_EQ(stand_ins::CallsOf("glViewport").back().text, "glViewport(0, 0, 200, 100)");
  EXPECT_NE(host_.SendWindow(message::kSetWindow, nullptr, port.bounds, 0), 0);
  stand_ins::Fail("aglUpdateContext", 10000, 1, 1);
  EXPECT_NE(host_.SendWindow(message::kSetWindow, &port, port.bounds, 0), 0);
  EXPECT_EQ(host_.Send(message::kHide), 0);
  EXPECT_NE(host_.SendWindow(message::kSetWindow, &port, port.bounds, 0), 0);
}

} // namespace
} // namespace halvenor
