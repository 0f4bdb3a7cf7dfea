// A renderer over the stand-ins, on a stepped clock.
#pragma once

#include "platform/clock.h"
#include "renderer/renderer.h"
#include "tests/stand_ins/stand_in_test.h"

#include <memory>

namespace halvenor {

inline constexpr std::uint64_t kSecond = 1000000000;

class RendererTest : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    clock::UseStepped(100 * kSecond);
    data_->settings = DefaultSettings();
    data_->settings.numLines = 1;
    data_->settings.numFrequencyLabels = 0;
    data_->settings.showFrameRate = 0;
    data_->highestActiveBin = 150.0F;
    RetireLogo();
    renderer_ = std::make_unique<Renderer>();
  }
  // The logo shows with the first opening of the process, whoever's it is.
  void RetireLogo() {
    Renderer first;
    first.Open(&port_, &port_.bounds);
    static const bool shows = [&] {
      first.Render(data_.get());
      return stand_ins::CallCount("glPushMatrix") > 0;
    }();
    EXPECT_TRUE(shows);
    first.Close();
    stand_ins::Reset();
    log_.Take();
  }
  void TearDown() override {
    renderer_.reset();
    EXPECT_EQ(LiveObjects(), 0);
    EXPECT_EQ(stand_ins::CurrentContextNumber(), 0);
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
    std::string calls;
    for (const std::string& call : stand_ins::CallTexts())
      calls += call + "; ";
    const auto fold = [&calls](std::string_view first, std::string_view last, auto name) {
      for (std::size_t at = 0; (at = calls.find(first, at)) != calls.npos;) {
        const std::size_t size = calls.find(last, at) + last.size() - at;
        calls.replace(at, size, name(calls.substr(at, size)));
      }
    };
    fold("glDisable(GL_TEXTURE_2D); glInterleavedArrays",
         "glEnable(GL_TEXTURE_2D); glLoadIdentity()", [](const auto&) { return "lines"; });
    fold("glBegin(GL_TRIANGLE_STRIP)", "glEnd()", [](const std::string& quad) {
      const std::size_t corner = quad.rfind("glVertex3f(") + 11; // x, y, 0
      return "quad " + quad.substr(corner, quad.rfind(", 0)") - corner);
    });
    return stand_ins::Listed(calls);
  }

  bool Open() { return renderer_->Open(&port_, &port_.bounds) == 1; }

  HalvenorPort port_ = stand_ins::OffscreenPort(400, 200);
  std::unique_ptr<VisualPluginData> data_ = std::make_unique<VisualPluginData>();
  std::unique_ptr<Renderer> renderer_;
};

} // namespace halvenor
