// The real module, loaded as a host would, drawing into memory on a stepped clock.
#pragma once

#include "host/install_paths.h"
#include "host/log_capture.h"
#include "host/track_records.h"
#include "platform/clock.h"
#include "protocol/settings.h"
#include "tests/support/plain_host.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace halvenor {

/// A look in which nothing but the present lines shows, bright enough to be told from black.
inline Settings PlainLook() {
  Settings settings = DefaultSettings();
  settings.intensity = 1.0F;
  settings.fade = 1.0F;
  settings.glow = 0;
  settings.smoothing = 0;
  settings.showFrameRate = 0;
  settings.numFrequencyLabels = 0;
  return settings;
}

/// A plain field instead: the band without lines, in one color.
inline Settings FieldLook(const Color& color) {
  Settings settings = PlainLook();
  settings.numLines = 0.5F;
  settings.innerColor = settings.outerColor = color;
  return settings;
}

class OffscreenPlugin {
public:
  /// Whether lines in the debug log are a failure.
  enum class Log { MustBeEmpty, MayComplain };

  OffscreenPlugin(const Settings& settings, int width, int height, Log log = Log::MustBeEmpty)
      : width_(width), height_(height), logMode_(log) {
    services_.preferences.Write("Halvenor", std::as_bytes(std::span(&settings, 1)));
    port_.kind = kHalvenorPortOffscreen;
    port_.bounds = {0, 0, static_cast<std::int16_t>(height), static_cast<std::int16_t>(width)};
    port_.frameFinished = TakeFrame;
    port_.frameRefCon = this;
    clock::UseStepped(1000000000);
    host_ = services_.Load(InstalledPluginPath());
    EXPECT_TRUE(host_) << services_.error;
    EXPECT_EQ(host_->Init(), status::kOk);
    EXPECT_EQ(host_->Show(&port_, port_.bounds, 0), status::kOk) << log_.TakeText();
    clock::WaitUntilParked();
    clock::Step(clock::Now() + 2100000000); // the logo's time passes
  }
  ~OffscreenPlugin() {
    host_->Hide();
    EXPECT_EQ(clock::Step(clock::Now() + 1), clock::StepResult::NoFrame);
    host_->Cleanup();
    clock::UseRealTime();
    // Every opening tells which blur it found.
    std::string lines = log_.TakeText();
    if (lines == "Halvenor : ARB shader support found!") lines.clear();
    EXPECT_TRUE(logMode_ == Log::MayComplain || lines.empty()) << lines;
  }
  OffscreenPlugin(const OffscreenPlugin&) = delete;
  OffscreenPlugin& operator=(const OffscreenPlugin&) = delete;

  void ShowAgain() {
    EXPECT_EQ(host_->Hide(), status::kOk);
    EXPECT_EQ(host_->Show(&port_, port_.bounds, 0), status::kOk);
    clock::WaitUntilParked();
  }
  void Press(char key) { EXPECT_TRUE(host_->Key(key, false)) << key; }
  void Play(const std::string& title) {
    TrackRecords records = MakeTrackRecords(title, "");
    EXPECT_EQ(host_->Play(records.Track(), records.Stream()), status::kOk);
  }
  void SetRect(const Rect& rect) { EXPECT_EQ(host_->SetWindow(&port_, rect, 0), status::kOk); }

  /// Delivers `times` records with every bin of a channel at one magnitude.
  void DeliverFlat(std::uint8_t left, std::uint8_t right, int times) {
    const auto record = std::make_unique<RenderVisualData>();
    record->numSpectrumChannels = 2;
    std::memset(record->spectrum[0], left, kSamplesPerChannel);
    std::memset(record->spectrum[1], right, kSamplesPerChannel);
    for (int i = 0; i < times; ++i)
      host_->RenderData(record.get(), 0);
  }

  void Step(int frames = 1, int framesPerSecond = 60) {
    for (int i = 0; i < frames; ++i) {
      const int before = frames_;
      const auto interval = static_cast<std::uint64_t>(1000000000 / framesPerSecond);
      EXPECT_EQ(clock::Step(clock::Now() + interval), clock::StepResult::Frame);
      EXPECT_EQ(frames_, before + 1);
    }
  }

  /// Frames of which there is no picture.
  void StepUnseen(HalvenorFrameUse use, int frames = 1) {
    const int before = frames_;
    for (int i = 0; i < frames; ++i)
      EXPECT_EQ(host_->Step(clock::Now() + kInterval, use), clock::StepResult::Frame);
    EXPECT_EQ(frames_, before);
    host_->SetFrameUse(kHalvenorFrameSeen);
  }

  /// Whether the pixel (from the top left) shows anything, in the last frame.
  [[nodiscard]] bool IsLit(int x, int y) const {
    const std::uint8_t* pixel = &pixels_[static_cast<std::size_t>(4 * (y * width_ + x))];
    return pixel[0] + pixel[1] + pixel[2] > 6;
  }
  /// First and last lit row of a column, or column of a row; or {-1, -1}.
  [[nodiscard]] std::array<int, 2> LitRows(int x) const {
    return Lit(height_, [&](int y) { return IsLit(x, y); });
  }
  [[nodiscard]] std::array<int, 2> LitColumns(int y) const {
    return Lit(width_, [&](int x) { return IsLit(x, y); });
  }
  /// The pixels of the last frame: red, green, blue, alpha; top row first.
  [[nodiscard]] const std::vector<std::uint8_t>& Pixels() const { return pixels_; }
  [[nodiscard]] int LitPixels(int left, int top, int right, int bottom) const {
    int lit = 0;
    for (int y = top; y < bottom; ++y)
      for (int x = left; x < right; ++x)
        lit += IsLit(x, y) ? 1 : 0;
    return lit;
  }

private:
  static constexpr std::uint64_t kInterval = 1000000000 / 60;

  template <typename Test>
  static std::array<int, 2> Lit(int end, const Test& isLit) {
    std::array<int, 2> ends = {-1, -1};
    for (int i = 0; i < end; ++i) {
      if (!isLit(i)) continue;
      if (ends[0] < 0) ends[0] = i;
      ends[1] = i;
    }
    return ends;
  }

  static void TakeFrame(void* refCon, const HalvenorFrame* frame) {
    auto& self = *static_cast<OffscreenPlugin*>(refCon);
    EXPECT_EQ(frame->width, self.width_);
    EXPECT_EQ(frame->height, self.height_);
    const auto row = static_cast<std::size_t>(4 * frame->width);
    self.pixels_.resize(row * static_cast<std::size_t>(frame->height));
    for (int y = 0; y < frame->height; ++y)
      std::memcpy(&self.pixels_[row * static_cast<std::size_t>(y)],
                  frame->topRow + y * frame->stride, row);
    ++self.frames_;
  }

  int width_;
  int height_;
  Log logMode_;
  LogCapture log_{LogCapture::Echo::Nothing, "plugin_tests"};
  PlainHost services_;
  HalvenorPort port_{};
  std::unique_ptr<PluginHost> host_;
  std::vector<std::uint8_t> pixels_;
  int frames_ = 0;
};

} // namespace halvenor
