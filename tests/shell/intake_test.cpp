#include "shell/audio_intake.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace halvenor {
namespace {

class Intake : public testing::Test {
protected:
  void SetUp() override {
    record_->highestActiveBin = 150.0F;
    data_->numSpectrumChannels = 2;
  }
  void Fill(int channel, std::uint8_t value) {
    std::fill(std::begin(data_->spectrum[channel]), std::end(data_->spectrum[channel]), value);
  }
  void Deliver(int times = 1) {
    for (int i = 0; i < times; ++i)
      ProcessRenderData(record_.get(), data_.get());
  }

  std::unique_ptr<VisualPluginData> record_ = std::make_unique<VisualPluginData>();
  std::unique_ptr<RenderVisualData> data_ = std::make_unique<RenderVisualData>();
};

TEST_F(Intake, SmoothingTruncatesAfterOneFusedStep) {
  // From the stored 100: trunc(fma(100, 0.65f, s x 0.35f)) with its single-precision roundings.
  const struct {
    std::uint8_t stored, magnitude, smoothed;
  } cases[] = {{0, 1, 0},    {0, 255, 89}, {255, 255, 255}, {253, 255, 253},
               {100, 0, 65}, {20, 0, 13},  {40, 0, 26},     {80, 80, 80},
               {10, 10, 10}, {1, 0, 0},    {1, 2, 1}};
  for (const auto& [stored, magnitude, smoothed] : cases) {
    record_->smoothedSpectrum[0][7] = stored;
    data_->spectrum[0][7] = magnitude;
    Deliver();
    EXPECT_EQ(record_->smoothedSpectrum[0][7], smoothed) << int{stored} << ", " << int{magnitude};
  }
  Fill(0, 255);
  Deliver(200);
  EXPECT_EQ(record_->smoothedSpectrum[0][0], 253);
  EXPECT_EQ(record_->smoothedSpectrum[0][255], 253);
  EXPECT_EQ(record_->smoothedSpectrum[0][256], 0);
}

TEST_F(Intake, LevelsAndLoudnessFollowTheMeans) {
  Fill(0, 128);
  Deliver();
  EXPECT_EQ(record_->channelLevel[0], static_cast<float>(0.05 * 0.5));
  EXPECT_EQ(record_->channelLevel[1], 0.0F);
  EXPECT_EQ(record_->loudness, static_cast<float>(0.005 * record_->channelLevel[0]));
  const float level = record_->channelLevel[0];
  Deliver();
  EXPECT_EQ(record_->channelLevel[0],
            static_cast<float>(0.95 * static_cast<float>(0.99 * level) + 0.05 * 0.5));
}

TEST_F(Intake, TheTopBinIsTheHighestThatStandsOut) {
  for (const auto& [channel, bin] : {std::pair{0, 120}, {1, 200}, {0, 255}, {1, 256}}) {
    record_->highestActiveBin = 150.0F;
    data_->spectrum[channel][bin] = 255;
    Deliver();
    EXPECT_EQ(record_->highestActiveBin,
              static_cast<float>(0.99 * 150.0F + 0.01 * std::min(bin, 255)));
  }
  record_->loudness = 1.9F; // a threshold that no bin passes
  const float before = record_->highestActiveBin;
  Deliver();
  EXPECT_EQ(record_->highestActiveBin, static_cast<float>(0.99 * before + 0.01 * 100));
}

TEST_F(Intake, SilenceAndMissingChannelsDecayToTheFloor) {
  data_->numSpectrumChannels = 0;
  data_->spectrum[0][250] = 255;
  record_->channelLevel[0] = 0.5F;
  record_->loudness = 0.25F;
  Deliver();
  EXPECT_EQ(record_->channelLevel[0], 0.5F); // no channel, no change
  EXPECT_EQ(record_->loudness, static_cast<float>(0.99 * 0.25F + 0.005 * 0.5F));
  EXPECT_EQ(record_->highestActiveBin, static_cast<float>(0.99 * 150.0F + 0.01 * 100));
  Deliver(5000);
  EXPECT_NEAR(record_->highestActiveBin, 100.0F, 1e-3);
}

TEST_F(Intake, MoreThanTwoChannelsCountAsTwo) {
  data_->numSpectrumChannels = 255;
  Fill(0, 100);
  Fill(1, 100);
  Deliver();
  EXPECT_EQ(record_->smoothedSpectrum[1][255], 35);
  EXPECT_EQ(record_->channelLevel[0], record_->channelLevel[1]);
}

TEST_F(Intake, NullAndResetClearWhatTheyNameAndNothingElse) {
  Fill(0, 200);
  Fill(1, 100);
  Deliver(3);
  const auto before = std::make_unique<VisualPluginData>(*record_);
  ProcessRenderData(record_.get(), nullptr);
  RenderVisualData silent{};
  EXPECT_EQ(std::memcmp(&record_->renderData, &silent, sizeof silent), 0);
  before->renderData = silent;
  EXPECT_EQ(std::memcmp(record_.get(), before.get(), sizeof *before), 0);

  Deliver();
  *before = *record_;
  ResetRenderData(record_.get());
  EXPECT_EQ(std::memcmp(&record_->renderData, &silent, sizeof silent), 0);
  before->renderData = silent;
  before->channelLevel[0] = before->channelLevel[1] = 0.0F;
  EXPECT_EQ(std::memcmp(record_.get(), before.get(), sizeof *before), 0);
}

} // namespace
} // namespace halvenor
