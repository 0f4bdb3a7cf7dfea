// A fixture for suites over the stand-ins: each case starts from scratch, with its log collected,
// and ends in real time, without misuse and with every pbuffer and reference given back.
#pragma once

#include "platform/clock.h"
#include "tests/stand_ins/agl_stand_in.h"
#include "tests/stand_ins/bundle_stand_in.h"
#include "tests/stand_ins/call_log.h"
#include "tests/stand_ins/gl_recorder.h"
#include "tests/stand_ins/offscreen_port.h"
#include "tests/support/log_lines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace halvenor::stand_ins {

class StandInTest : public testing::Test {
protected:
  void SetUp() override { Reset(); }

  void TearDown() override {
    EXPECT_THAT(Misuses(), testing::IsEmpty());
    EXPECT_EQ(LivePBuffers(), 0);
    EXPECT_EQ(LiveReferences(), 0);
    Reset();
    clock::UseRealTime();
  }

  LogLines log_;
};

} // namespace halvenor::stand_ins
