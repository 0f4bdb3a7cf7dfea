// A display that is open on an offscreen port, over the stand-ins.
#pragma once

#include "renderer/surface/display.h"
#include "tests/stand_ins/stand_in_test.h"

namespace halvenor {

class OpenDisplayTest : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    display_.Open(&port_);
    display_.Resize(&port_, &port_.bounds);
  }
  void TearDown() override {
    display_.Close();
    StandInTest::TearDown();
  }

  HalvenorPort port_ = stand_ins::OffscreenPort(640, 480);
  Display display_;
};

} // namespace halvenor
