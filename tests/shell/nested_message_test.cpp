// Hosts that send messages from inside the plug-in's requests.
#include "platform/guard.h"
#include "tests/shell/shell_test.h"

namespace halvenor {
namespace {

class NestedMessages : public ShellTest {
protected:
  void SetUp() override {
    ShellTest::SetUp();
    clock::UseStepped(1000000000);
    host_.Init();
    host_.Show(&port_, kFullScreenOption);
  }
  static bool Draws() { return Step() == clock::StepResult::Frame; }
};

TEST_F(NestedMessages, LeavingFullScreenBringsANewWindow) {
  host_.inside[request::kSetFullScreen] = [this] {
    EXPECT_EQ(host_.SendWindow(message::kSetWindow, &port_, {0, 0, 100, 200}, 0), 0);
    EXPECT_TRUE(mutex.HeldByThisThread());           // the outer message still has it
    EXPECT_EQ(stand_ins::CurrentContextNumber(), 0); // but the host's own GL is back
  };
  EXPECT_EQ(host_.SendEvent(kKeyDownEvent, 'c'), 0);
  EXPECT_EQ(host_.Record()->windowOptions, 0U);
  EXPECT_TRUE(Draws());
  EXPECT_EQ(stand_ins::CallsOf("glViewport").back().text, "glViewport(0, 0, 200, 100)");
}

TEST_F(NestedMessages, InitKeepsItsRecordWhateverComesInside) {
  for (const FourCharCode code :
       {request::kGetPluginFileSpec, request::kGetPluginData, request::kSetFullScreenOptions}) {
    TestHost other;
    other.inside[code] = [this] { host_.Send(message::kIdle); };
    EXPECT_EQ(other.Init(), 0);
    EXPECT_EQ(RecordGuard().Record(), other.Record()); // not the one that the inner message brought
  }
}

TEST_F(NestedMessages, TheGuardTakesTheLockUnlessItsThreadHasIt) {
  host_.Send(message::kIdle);
  {
    const RecordGuard guard;
    EXPECT_EQ(guard.Record(), host_.Record());
    EXPECT_TRUE(mutex.HeldByThisThread());
  }
  EXPECT_FALSE(mutex.HeldByThisThread());
  host_.inside[request::kSetFullScreen] = [this] {
    {
      const RecordGuard guard;
      EXPECT_EQ(guard.Record(), host_.Record());
    }
    EXPECT_TRUE(mutex.HeldByThisThread());
  };
  EXPECT_EQ(host_.SendEvent(kKeyDownEvent, 'c'), 0);
  VisualMessage none{};
  VisualPluginHandler(message::kIdle, &none, nullptr);
  EXPECT_EQ(RecordGuard().Record(), nullptr);
}

} // namespace
} // namespace halvenor
