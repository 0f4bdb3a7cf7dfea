#include "scene/spectrum.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <numeric>

namespace halvenor {
namespace {

class SpectrumTest : public testing::Test {
protected:
  void Prepare(std::int32_t scale, float highestActiveBin) {
    data_->settings.frequencyScale = scale;
    data_->highestActiveBin = highestActiveBin;
    spectrum_->PreProcess(data_.get());
  }
  [[nodiscard]] float X(int k) const {
    return spectrum_->Vertices()[static_cast<std::size_t>(k)].x;
  }
  [[nodiscard]] float Y(int channel, int k) const {
    return spectrum_->Vertices()[static_cast<std::size_t>(channel * 512 + k)].y;
  }

  std::unique_ptr<VisualPluginData> data_ = std::make_unique<VisualPluginData>();
  std::unique_ptr<Spectrum> spectrum_ = std::make_unique<Spectrum>();
};

TEST_F(SpectrumTest, EveryMappingSpreadsTheBins) {
  const struct {
    std::int32_t scale;
    float bins;
    int vertices;
  } cases[] = {
      {0, 150, 150}, {0, 256, 256}, {7, 150, 150},     {-1, 150, 150}, {1, 150, 166},
      {2, 150, 186}, {3, 100, 104}, {3, 150, 154},     {3, 256, 256},  {0, 0, 0},
      {1, 0.9F, 0},  {1, -5, 0},    {0, 199.99F, 199},
  };
  for (const auto& [scale, bins, vertices] : cases) {
    Prepare(scale, bins);
    EXPECT_EQ(spectrum_->NumVertices(), vertices) << "scale " << scale << ", bins " << bins;
    for (int k = 1; k < spectrum_->NumVertices(); ++k)
      EXPECT_GT(X(k), X(k - 1)) << "scale " << scale << ", vertex " << k;
    if (vertices > 0) {
      EXPECT_EQ(X(0), -1.0F);
      EXPECT_LT(X(vertices - 1), 1.0F);
    }
  }
  Prepare(0, 150);
  EXPECT_FLOAT_EQ(X(75), 0.0F);
}

TEST_F(SpectrumTest, NoRecordOverrunsTheVertices) {
  for (const std::int32_t scale : {0, 1, 2, 3})
    for (const float bins : {511.0F, 1e9F, -1e30F, std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::quiet_NaN()}) {
      Prepare(scale, bins);
      EXPECT_LE(spectrum_->NumVertices(), 505);
    }
}

TEST_F(SpectrumTest, WideGapsAreFilledFromTheirBinOn) {
  std::iota(std::begin(data_->smoothedSpectrum[0]), std::end(data_->smoothedSpectrum[0]),
            std::uint8_t{10});
  std::fill(std::begin(data_->smoothedSpectrum[1]), std::end(data_->smoothedSpectrum[1]),
            std::uint8_t{128});
  Prepare(2, 150);
  // Bin 0 is plain, bin 1 is filled toward bin 2.
  EXPECT_NEAR(X(1), 2 * std::log10(2.0) / std::log10(151.0) - 1, 1e-6);
  EXPECT_NEAR(X(6), 2 * std::log10(3.0) / std::log10(151.0) - 1, 1e-6);
  EXPECT_NEAR(X(2) - X(1), 0.2F * (X(6) - X(1)), 1e-6);
  EXPECT_NEAR(X(5) - X(1), 0.8F * (X(6) - X(1)), 1e-6);
  EXPECT_EQ(Y(0, 0), 10.0F / 256);
  EXPECT_EQ(Y(0, 1), 11.0F / 256); // at t = 0 exactly the bin
  EXPECT_NEAR(Y(0, 3), 11.4F / 256, 0.002F);
  for (int k = 0; k < spectrum_->NumVertices(); ++k)
    EXPECT_NEAR(Y(1, k), 0.5F, 1e-6F);
}

TEST_F(SpectrumTest, MagnitudesBetweenBinsFollowACubic) {
  std::uint8_t row[512] = {};
  row[3] = row[4] = 100;
  row[510] = 50;
  row[511] = 200;
  const auto at = [&row](float position) { return Spectrum::MagnitudeAtPoint(position, row); };
  EXPECT_EQ(at(3.5F), 118.75F); // control points 125 and 125
  EXPECT_EQ(at(3.0F), 100.0F);
  // a = 50, p = q = r = 200: c1 = 237.5, c2 = 200.
  EXPECT_FLOAT_EQ(at(511.5F), 200 * 0.125F + 3 * 237.5F * 0.125F + 3 * 200 * 0.125F + 25);
  EXPECT_EQ(at(0.0F), 0.0F);
  for (const float position : {-1e9F, -3.5F, 600.0F, 1e30F, std::nanf("")})
    at(position); // no fault
}

TEST_F(SpectrumTest, MappingsAndTheirReverse) {
  const auto back = [this](std::int32_t scale, int bin) {
    Prepare(scale, 150);
    return spectrum_->screenToFrequency(spectrum_->frequencyToScreen(bin));
  };
  for (const int bin : {0, 1, 7, 100, 255, 511}) {
    const auto number = static_cast<float>(bin);
    EXPECT_EQ(back(0, bin), number);
    EXPECT_NEAR(back(1, bin), number, 1e-4F * (1 + number));
    EXPECT_NEAR(back(2, bin), number + 1, 1e-4F * (1 + number));
  }
  EXPECT_FLOAT_EQ(back(3, 0), 11.111111F);
  // The larger root of 0.09 x^2 - (0.6 y + 1) x + y^2 for y = F(100) = 40.
  const double a = 0.6 * 40 + 1;
  EXPECT_NEAR(back(3, 100), (a + std::sqrt(a * a - 0.36 * 1600)) / 0.18, 1e-3);
}

} // namespace
} // namespace halvenor
