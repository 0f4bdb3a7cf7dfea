// A renderer over the stand-ins, on a stepped clock.
#pragma once

#include "platform/clock.h"
#include "renderer/renderer.h"
#include "tests/stand_ins/log_lines.h"
#include "tests/stand_ins/offscreen_port.h"
#include "tests/stand_ins/stand_in_test.h"

#include <memory>

namespace halvenor {

inline constexpr std::uint64_t kSecond = 1000000000;

class RendererTest : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    clock::UseStepped(100 * kSecond);
    RetireLogo();
    renderer_ = std::make_unique<Renderer>();
    data_->settings = DefaultSettings();
    data_->settings.numLines = 1;
    data_->settings.numFrequencyLabels = 0;
    data_->settings.showFrameRate = 0;
    data_->highestActiveBin = 150.0F;
  }
  // The logo shows with the first opening of the process, whoever's it is.
  void RetireLogo() {
    Renderer first;
    first.Open(&port_, &port_.bounds);
    first.Close();
    stand_ins::Reset();
    log_.Take();
  }
  void TearDown() override {
    renderer_.reset();
    EXPECT_EQ(LiveObjects(), 0);
    EXPECT_EQ(stand_ins::CurrentContextNumber(), 0);
    clock::UseRealTime();
    StandInTest::TearDown();
  }

  static std::int64_t LiveObjects() {
    return stand_ins::LiveContexts() + stand_ins::LivePixelFormats() +
           stand_ins::LiveDisplayLists() + stand_ins::LivePBuffers() + stand_ins::LiveTextures() +
           stand_ins::LivePrograms();
  }
  void Advance(std::uint64_t nanoseconds) { clock::Step(clock::Now() + nanoseconds); }
  // The calls of one frame, with quads of the whole texture and drawings of the lines folded.
  std::vector<std::string> Frame() {
    stand_ins::ClearCalls();
    renderer_->Render(data_.get());
    std::vector<std::string> calls;
    bool inLines = false;
    for (const std::string& call : stand_ins::CallTexts()) {
      if (call.starts_with("glInterleavedArrays")) {
        inLines = true;
        calls.back() = "lines"; // in place of switching texturing off
      } else if (!inLines) {
        calls.push_back(call);
      } else if (call == "glEnable(GL_TEXTURE_2D)") {
        inLines = false;
        afterLines_ = true;
        continue;
      }
      if (afterLines_ && !inLines) calls.pop_back(); // the identity after the lines
      afterLines_ = false;
      FoldQuad(calls);
    }
    return calls;
  }
  static void FoldQuad(std::vector<std::string>& calls) {
    constexpr std::size_t kQuadCalls = 10;
    if (calls.size() < kQuadCalls || calls.back() != "glEnd()") return;
    const std::string corner = calls[calls.size() - 2]; // glVertex3f(x, y, 0)
    calls.resize(calls.size() - kQuadCalls);
    calls.push_back("quad " + corner.substr(11, corner.size() - 15));
  }
  bool afterLines_ = false;

  bool Open() { return renderer_->Open(&port_, &port_.bounds) == 1; }

  stand_ins::LogLines log_;
  HalvenorPort port_ = stand_ins::OffscreenPort(400, 200);
  std::unique_ptr<VisualPluginData> data_ = std::make_unique<VisualPluginData>();
  std::unique_ptr<Renderer> renderer_;
};

} // namespace halvenor
