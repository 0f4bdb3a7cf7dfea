#include "tests/renderer/renderer_fixture.h"
#include "tests/scene/drawn_texts.h"

#include <string>

namespace halvenor {
namespace {

using stand_ins::DrawnText;
using testing::ElementsAre;
using testing::IsEmpty;

class KeysAndTexts : public RendererTest {
protected:
  void SetUp() override {
    RendererTest::SetUp();
    data_->settings.glow = 0;
    data_->settings.numLines = 0;
    ASSERT_TRUE(Open());
    FirstFrame();
  }
  // Learns the font's first list from a text that is known.
  void FirstFrame() {
    data_->settings.showFrameRate = 1;
    stand_ins::ClearCalls();
    renderer_->Render(data_.get());
    data_->settings.showFrameRate = 0;
    base_ = stand_ins::CallsOf("glCallList").back().arguments[0] - 's'; // "... fps"
  }
  // The texts of one frame, lines joined by line feeds, each at its place.
  std::vector<DrawnText> Texts(std::uint64_t after = kSecond / 20) {
    Advance(after);
    stand_ins::ClearCalls();
    renderer_->Render(data_.get());
    std::vector<DrawnText> texts;
    for (DrawnText& line : stand_ins::DrawnTexts(stand_ins::Calls(), base_)) {
      const bool continues = !texts.empty() && texts.back().x == line.x && line.y < texts.back().y;
      if (continues) {
        texts.back().text += '\n' + line.text;
      } else {
        texts.push_back(std::move(line));
      }
    }
    return texts;
  }
  std::string Text() {
    const auto texts = Texts();
    return texts.size() == 1 ? texts[0].text : "(" + std::to_string(texts.size()) + " texts)";
  }
  // The alpha of the color before the last text.
  static double LastAlpha() { return stand_ins::CallsOf("glColor4f").back().arguments[3]; }
  Status Press(char key) { return renderer_->KeyboardInput(data_.get(), key); }

  double base_ = 0;
};

TEST_F(KeysAndTexts, OnlyExactCharactersAreCommands) {
  for (const char key : {'a', 'h', '?', 'i', 'l', 'r', 's', 'x'})
    EXPECT_EQ(Press(key), 0) << key;
  for (const char key : {'A', 'H', 'c', ' ', '\0', '\xFF', '\x1B'})
    EXPECT_EQ(Press(key), status::kNotHandled) << key;
}

TEST_F(KeysAndTexts, TheFrameRateStandsAtTheBottomRight) {
  data_->settings.showFrameRate = 1;
  const auto texts = Texts();
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_EQ(texts[0].text, "20.0 fps");
  EXPECT_NEAR(texts[0].x, 1 - 8 * 9 / 400.0, 1e-6);
  EXPECT_NEAR(texts[0].y, 0.5 * 9 * 1.5 / 200 - 1, 1e-6);
}

TEST_F(KeysAndTexts, HelpAndSettingsTakeEachOthersPlace) {
  Press('h');
  const auto help = Texts();
  ASSERT_EQ(help.size(), 1U);
  EXPECT_EQ(help[0].text,
            "\n     Halvenor Help\n--------------------------\nKeyboard Settings:\n a : Toggle "
            "Autopilot\n c : Open Config\n h : Show Help\n i : Show Settings\n l : Log Settings\n "
            "r : Randomise Settings\n s : Save New Preset");
  EXPECT_NEAR(help[0].x, 1 - 24 * 9 / 400.0, 1e-6);
  EXPECT_EQ(help[0].y, 1);
  EXPECT_THAT(stand_ins::CallTexts(),
              testing::IsSupersetOf({"glColor4f(0, 0, 0, 0.5)", "glBlendFunc(GL_ONE, GL_SRC_ALPHA)",
                                     "glVertex2f(0.4375, 1)", "glVertex2f(1, 1)",
                                     "glVertex2f(0.4375, -1)", "glVertex2f(1, -1)"}));

  Press('i');
  data_->settings.numLines = 34.4F;
  data_->settings.autopilot = 7;
  renderer_->KeyboardInput(data_.get(), 'x');
  data_->settings.autopilot = 0;
  EXPECT_EQ(Text(),
            "\n Halvenor Settings\n--------------------------\n\nNum Lines  34 \nIntensity:  0.34 "
            "\nFade:  0.21 \n\nZoom:  0.70 \nZoom Rotation:  10\n\nInner color - \n    red: 0.37 \n"
            "    green: 0.73 \n    blue: 1.00\n\nOuter color - \n    red: 1.00 \n    green: 0.68 \n"
            "    blue: 0.28\n\nSmoothing ON \nGlow OFF \nColor Cycle OFF \nSharp Overlay OFF\n\n"
            "Autopilot OFF");
  Press('i');
  EXPECT_THAT(Texts(), IsEmpty());
  Press('i');
  Press('?'); // takes the settings' place
  EXPECT_EQ(Text(), help[0].text);
  renderer_->Close();
  Press('?');
  ASSERT_TRUE(Open()); // panels outlive an opening, and keys work without one
  EXPECT_THAT(Texts(), IsEmpty());
}

TEST_F(KeysAndTexts, SettingsOfAnyValueFitTheirPanel) {
  Press('i');
  Settings& settings = data_->settings;
  constexpr float kLong = -3.4e38F; // 40 digits
  settings.numLines = settings.intensity = settings.fade = settings.zoom = kLong;
  settings.zoomRotation = kLong;
  settings.innerColor = settings.outerColor = {kLong, kLong, kLong};
  EXPECT_EQ(Text().substr(0, 20), "\n Halvenor Settings\n");
}

TEST_F(KeysAndTexts, MessagesStayThreeSecondsAndReplaceEachOther) {
  const auto steadyRate = [this] {
    for (int frame = 0; frame < 300; ++frame)
      Texts();
  };
  steadyRate(); // at 20 frames per second
  Press('a');
  EXPECT_EQ(data_->settings.autopilot, 1);
  data_->settings.autopilot = 0x100; // any flag: the key turns its last bit
  Press('a');
  EXPECT_EQ(data_->settings.autopilot, 0x101);
  EXPECT_EQ(Text(), "\n Autopilot enabled");
  EXPECT_NEAR(LastAlpha(), 6.0, 1e-3);
  data_->settings.autopilot = 1;
  for (int frame = 1; frame < 30; ++frame)
    Texts();
  Press('a');
  EXPECT_EQ(data_->settings.autopilot, 0);
  int shown = 0;
  for (; shown < 100; ++shown) {
    const auto texts = Texts();
    if (texts.empty()) break;
    ASSERT_EQ(texts[0].text, "\n Autopilot disabled");
    EXPECT_NEAR(texts[0].x, 9 / 400.0 - 1, 1e-6);
    EXPECT_EQ(texts[0].y, 1);
  }
  EXPECT_NEAR(shown, 60, 1);
  Press('l');
  EXPECT_EQ(Text(), "\n Settings printed to console.log");
  Press('s');
  EXPECT_EQ(Text(), "\n Saved new preset");
}

TEST_F(KeysAndTexts, PresetKeysReachTheConfiguration) {
  static std::string calls;
  calls.clear();
  static const ConfigurationActions actions = {[](VisualPluginData*) { calls += "add "; },
                                               [](VisualPluginData*) { calls += "manual "; },
                                               [](VisualPluginData*) { calls += "log "; }};
  renderer_->SetConfigurationActions(&actions);
  for (const char key : {'s', 'r', 'l', 'x', 'a'})
    Press(key);
  EXPECT_EQ(calls, "add manual log ");
}

TEST_F(KeysAndTexts, TrackLinesFadeInTheirLastTenthOfASecond) {
  std::string track = "Title - Artist";
  std::string stream = "Radio";
  data_->trackText = &track;
  data_->trackTextTime = 175;
  auto texts = Texts();        // 125 ms are left
  ASSERT_EQ(texts.size(), 1U); // a line without a text is none
  EXPECT_EQ(texts[0].text, track);
  EXPECT_NEAR(texts[0].x, 9 / 400.0 - 1, 1e-6);
  EXPECT_NEAR(texts[0].y, 0.5 * 9 * 1.5 / 200 - 1, 1e-6);
  const auto alphas = [] {
    std::vector<double> values;
    for (const auto& call : stand_ins::CallsOf("glColor4f"))
      values.push_back(call.arguments[3]);
    return std::vector(values.end() - 2, values.end());
  };
  EXPECT_THAT(alphas(), ElementsAre(testing::DoubleNear(1.25, 1e-5), 0.0));
  Texts();
  EXPECT_THAT(alphas(), ElementsAre(testing::DoubleNear(0.75, 1e-5), 0.0));
  data_->streamText = &stream;
  data_->streamTextTime = kShownUntilChanged;
  EXPECT_EQ(Texts().size(), 2U);
  Texts();
  EXPECT_EQ(Text(), stream); // the track's time is over
  data_->streamTextTime = 0;
  EXPECT_THAT(Texts(), IsEmpty());
}

} // namespace
} // namespace halvenor
