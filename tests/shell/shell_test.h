// A fixture for the handler's suites.
#pragma once

#include "platform/clock.h"
#include "tests/shell/test_host.h"
#include "tests/stand_ins/stand_in_test.h"

namespace halvenor {

/// A case with a host, whose plug-in leaves nothing behind.
class ShellTest : public stand_ins::StandInTest {
protected:
  void TearDown() override {
    if (host_.refCon != nullptr) host_.Send(message::kCleanup);
    EXPECT_FALSE(mutex.HeldByThisThread());
    EXPECT_EQ(rendering, 0);
    EXPECT_EQ(renderThreadExists, 0);
    EXPECT_EQ(stand_ins::LiveContexts(), 0);
    StandInTest::TearDown();
  }
  static clock::StepResult Step() { return clock::Step(clock::Now() + 1000000000 / 60); }

  HalvenorPort port_ = stand_ins::OffscreenPort(640, 480);
  TestHost host_;
};

} // namespace halvenor
