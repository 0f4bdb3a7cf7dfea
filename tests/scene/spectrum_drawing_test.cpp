#include "renderer/surface/font_system.h"
#include "scene/spectrum.h"
#include "tests/renderer/surface/display_fixture.h"
#include "tests/scene/drawn_texts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace halvenor {
namespace {

using stand_ins::CallsOf;
using testing::ElementsAre;

class SpectrumDrawing : public OpenDisplayTest {
protected:
  void SetUp() override {
    OpenDisplayTest::SetUp();
    FontSystem::Open(&display_);
    fontBase_ = stand_ins::CallsOf("aglUseFont").at(0).arguments[6];
    data_->settings = DefaultSettings();
    data_->highestActiveBin = 150.0F;
    data_->loudness = 0.5F;
  }
  void TearDown() override {
    FontSystem::Close();
    OpenDisplayTest::TearDown();
  }

  void Render() {
    stand_ins::ClearCalls();
    spectrum_->PreProcess(data_.get());
    spectrum_->Render();
  }
  std::vector<std::string> Labels() {
    stand_ins::ClearCalls();
    spectrum_->PreProcess(data_.get());
    spectrum_->DrawText();
    std::vector<std::string> labels;
    for (const auto& drawn : stand_ins::DrawnTexts(stand_ins::Calls(), fontBase_))
      labels.push_back(drawn.text);
    return labels;
  }
  // The inner color as the next call draws it: that of the band's first point.
  std::vector<double> BandColor() {
    Render();
    const auto passes = CallsOf("glTranslatef").size() / 2; // each has a color of its own
    return CallsOf("glColor4f").at(passes).arguments;
  }

  double fontBase_ = 0;
  std::unique_ptr<VisualPluginData> data_ = std::make_unique<VisualPluginData>();
  std::unique_ptr<Spectrum> spectrum_ = std::make_unique<Spectrum>();
};

TEST_F(SpectrumDrawing, TheBandEndsWhereTheOutermostLineWouldLie) {
  data_->smoothedSpectrum[0][20] = 128;
  data_->smoothedSpectrum[1][20] = 64;
  data_->settings.frequencyScale = 0;
  Render();
  EXPECT_EQ(CallsOf("glBegin").size(), 2U);
  const auto points = CallsOf("glVertex3f");
  ASSERT_EQ(points.size(), 600U);
  EXPECT_EQ(points[40].arguments[1], 0);
  EXPECT_NEAR(points[41].arguments[1], 0.7 * (0.495 + std::sqrt(0.495) * 0.5), 1e-6);
  EXPECT_NEAR(points[341].arguments[1], -0.7 * (0.495 + std::sqrt(0.495) * 0.25), 1e-6);
}

TEST_F(SpectrumDrawing, NumLinesBecomePasses) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  const struct {
    float lines;
    std::size_t passes;
  } cases[] = {{34, 34},   {1, 1},  {0.4F, 0},   {2.5F, 2},  {100, 100}, {9000, 128}, {0, 0},
               {-0.0F, 0}, {-7, 0}, {kInf, 128}, {-kInf, 0}, {NAN, 0},   {1e-40F, 0}, {3e38F, 128}};
  for (const auto& [lines, passes] : cases) {
    data_->settings.numLines = lines;
    Render();
    EXPECT_EQ(CallsOf("glDrawArrays").size(), 2 * passes) << lines;
    const auto colors = CallsOf("glColor4f"); // of the passes, then of the band
    ASSERT_GT(colors.size(), passes);
    const double each = passes == 128 ? std::min(lines, std::numeric_limits<float>::max()) / 128.0
                                      : 1.0; // together as bright as all of them
    EXPECT_FLOAT_EQ(static_cast<float>(colors[0].arguments[3]),
                    static_cast<float>(colors[passes].arguments[3] * (passes == 0 ? 1.0 : each)))
        << lines;
  }
  data_->loudness = 0;
  data_->settings.numLines = kInf;
  Render();
  EXPECT_EQ(CallsOf("glColor4f")[0].arguments[3], 0) << "silence";
  data_->loudness = 0.9F;
  data_->settings.numLines = 34;
  Render();
  EXPECT_NEAR(CallsOf("glTranslatef")[66].arguments[1], 0.7 * 0.4926, 1e-4);
}

TEST_F(SpectrumDrawing, LoudnessSetsHeightAndAlpha) {
  for (const auto& [loudness, amplitude] :
       {std::pair{0.0F, 0.0}, {0.01F, 0.43252}, {0.0687F, 0.7}, {0.9F, 0.7}}) {
    data_->loudness = loudness;
    data_->settings.numLines = 1;
    Render();
    EXPECT_NEAR(CallsOf("glScalef")[0].arguments[1], amplitude * 0.5, 1e-5);
    EXPECT_NEAR(CallsOf("glColor4f")[0].arguments[3], 0.2 * 0.337209 * std::sqrt(amplitude), 1e-6);
  }
}

TEST_F(SpectrumDrawing, VerticalLayoutTurnsEverything) {
  data_->settings.verticalLayout = 2;
  data_->settings.numLines = 3;
  Render();
  EXPECT_EQ(CallsOf("glRotatef").size(), 7U); // two a pass, one for the band
  EXPECT_EQ(CallsOf("glRotatef")[0].text, "glRotatef(90, 0, 0, 1)");
  Labels();
  EXPECT_EQ(CallsOf("glRasterPos3f")[0].text, "glRasterPos3f(-0.04, -0.93, 0)");
  EXPECT_EQ(CallsOf("glVertex2f")[0].text, "glVertex2f(0, -0.94)");
  EXPECT_EQ(CallsOf("glVertex2f")[1].text, "glVertex2f(-0.02, -0.94)");
}

TEST_F(SpectrumDrawing, ColorCycleTurnsTheHueByTheSquareOfTheLoudness) {
  data_->settings.innerColor = {1, 0, 0};
  data_->settings.numLines = 0;
  const auto red = BandColor();
  EXPECT_EQ(red[0], 1);
  data_->settings.colorCycle = 1;
  data_->loudness = 0;
  const auto still = BandColor(); // nothing has turned yet, in whatever state the cycle is
  EXPECT_EQ(BandColor(), still);

  // 750 of 65536 a call: after 22 calls (16500) hue 1/4 turn + 116/65536, between yellow and green.
  data_->loudness = 0.5F;
  std::vector<double> turned;
  for (int call = 0; call < 22; ++call)
    turned = BandColor();
  if (still[0] == 1 && still[1] < 1e-4) { // the first suite of the process to turn it
    EXPECT_NEAR(turned[0], 2 - 6 * 16500 / 65536.0, 2e-3);
    EXPECT_NEAR(turned[1], 1, 1e-4);
    EXPECT_NEAR(turned[2], 0, 1e-4);
  }
  data_->settings.colorCycle = 0;
  EXPECT_EQ(BandColor()[0], 1);
  data_->settings.colorCycle = 1;
  data_->loudness = 0;
  EXPECT_EQ(BandColor()[0], turned[0]); // resumes where it stood

  for (const float wild : {NAN, 1e30F, -1e30F, std::numeric_limits<float>::infinity()}) {
    data_->settings.innerColor = {wild, wild, wild};
    for (const double component : BandColor())
      EXPECT_TRUE(component >= 0 && component <= 1);
  }
}

TEST_F(SpectrumDrawing, LabelsFollowTheMapping) {
  const struct {
    std::int32_t scale;
    std::vector<std::string> labels;
  } cases[] = {
      {0, {"0.4k", "1.7k", "3.0k", "4.3k", "5.5k", "6.8k", "8.1k", "9.4k", "10.7k", "12.0k"}},
      {1, {"0.0k", "0.2k", "0.7k", "1.4k", "2.4k", "3.6k", "5.1k", "6.9k", "8.9k", "11.2k"}},
      {2, {"0.1k", "0.2k", "0.3k", "0.4k", "0.7k", "1.2k", "2.0k", "3.3k", "5.5k", "9.1k"}},
      {3, {"1.1k", "2.5k", "3.8k", "5.1k", "6.3k", "7.5k", "8.6k", "9.8k", "11.0k", "12.1k"}},
  };
  for (const auto& [scale, labels] : cases) {
    data_->settings.frequencyScale = scale;
    EXPECT_EQ(Labels(), labels) << "scale " << scale;
  }
  EXPECT_EQ(CallsOf("glRasterPos3f")[0].text, "glRasterPos3f(-0.93, -0.04, 0)");
  EXPECT_EQ(CallsOf("glVertex2f")[0].text, "glVertex2f(-0.94, 0.01)");
  EXPECT_EQ(CallsOf("glVertex2f")[1].text, "glVertex2f(-0.94, -0.01)");
  EXPECT_NEAR(CallsOf("glVertex2f")[18].arguments[0], 0.86, 1e-6);
}

TEST_F(SpectrumDrawing, LabelsAreAsManyAsCanBeToldApart) {
  constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
  constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
  const struct {
    std::int32_t wanted, fontSize;
    std::size_t drawn;
  } cases[] = {{3, 9, 3},       {1, 9, 1},       {0, 9, 0},       {-1, 9, 0},     {kLeast, 9, 0},
               {100, 9, 98},    {100, 128, 98},  {200, 9, 195},   {2000, 9, 249}, {kMost, 9, 249},
               {kMost, 1, 249}, {kMost, 23, 98}, {kMost, 128, 98}};
  for (const auto& [wanted, fontSize, drawn] : cases) {
    FontSystem::SetSize(fontSize);
    data_->settings.numFrequencyLabels = wanted;
    EXPECT_EQ(Labels().size(), drawn) << wanted;
  }
  FontSystem::SetSize(9);
}

} // namespace
} // namespace halvenor
