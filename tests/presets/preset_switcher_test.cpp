#include "presets/look.h"
#include "presets/preset_switcher.h"

#include <gtest/gtest.h>

namespace halvenor {
namespace {

using Event = PresetSwitcher::Event;

// A settings block whose owner does what the switcher says.
struct Desk {
  PresetSwitcher switcher;
  Settings block = DefaultSettings();
  int writes = 0;

  Event At(double now) {
    const PresetSwitcher::Step step = switcher.Advance(block, now);
    if (step.write) block = *step.write;
    writes += step.write ? 1 : 0;
    return step.event;
  }
};

Settings Target() {
  Settings target = DefaultSettings();
  target.fade = 1;
  target.glow = 0;
  target.fontSize = 99;
  return target;
}

TEST(PresetSwitcher, BlendsFromWhatIsThereAndKeepsTheRest) {
  Desk desk;
  desk.block.fade = 0;
  desk.block.autopilot = 1;
  desk.switcher.BlendTo(Target(), 4);
  EXPECT_EQ(desk.At(100), Event::None);
  EXPECT_EQ(desk.block.autopilot, 0) << "it would move the look on";
  EXPECT_EQ(desk.block.fade, 0);
  desk.block.fontSize = 12; // a display option, which anybody may change
  EXPECT_EQ(desk.At(101), Event::None);
  EXPECT_GT(desk.block.fade, 0.1F);
  EXPECT_EQ(desk.At(102), Event::None);
  EXPECT_FLOAT_EQ(desk.block.fade, 0.5F);
  EXPECT_EQ(desk.At(104), Event::None);
  EXPECT_TRUE(SameLook(desk.block, Target()));
  EXPECT_EQ(desk.block.fontSize, 12);
  EXPECT_FALSE(desk.switcher.IsBlending());
  const int writes = desk.writes;
  desk.At(200);
  EXPECT_EQ(desk.writes, writes) << "nothing is left to do";
}

TEST(PresetSwitcher, AtOnceAndTimeThatJumps) {
  for (const double seconds : {0.0, -1.0}) {
    Desk desk;
    desk.switcher.BlendTo(Target(), seconds);
    desk.At(5);
    EXPECT_TRUE(SameLook(desk.block, Target()) && !desk.switcher.IsBlending()) << seconds;
  }
  Desk desk;
  desk.switcher.Start(10);
  desk.switcher.BlendTo(Target(), 4);
  desk.At(100);
  EXPECT_EQ(desk.At(50), Event::None) << "back";
  EXPECT_TRUE(desk.switcher.IsBlending());
  EXPECT_EQ(desk.At(60), Event::WantsPreset) << "the interval goes on from there";
  EXPECT_EQ(desk.At(1e6), Event::WantsPreset) << "ahead: one turn, not many";
  EXPECT_EQ(desk.At(1e6 + 1), Event::None);
  EXPECT_TRUE(SameLook(desk.block, Target()));
}

TEST(PresetSwitcher, AsksAtEveryTurn) {
  Desk desk;
  desk.switcher.Start(10);
  EXPECT_EQ(desk.At(0), Event::None);
  EXPECT_EQ(desk.At(9.9), Event::None);
  EXPECT_EQ(desk.At(10), Event::WantsPreset);
  EXPECT_EQ(desk.At(10.1), Event::None);
  desk.switcher.BlendTo(Target(), 2); // by hand, or as answer: the interval begins anew
  desk.At(15);
  EXPECT_EQ(desk.At(24.9), Event::None);
  desk.switcher.SetInterval(30);
  EXPECT_EQ(desk.At(25), Event::None);
  desk.switcher.SetInterval(5);
  EXPECT_EQ(desk.At(25.1), Event::WantsPreset);
  desk.switcher.Stop();
  EXPECT_EQ(desk.At(1000), Event::None);
  desk.switcher.SetInterval(1);
  EXPECT_FALSE(desk.switcher.IsSwitching()) << "another interval starts nothing";
}

TEST(PresetSwitcher, WhoeverBeganLastWins) {
  const struct {
    const char* what;
    bool switching;
    bool blending;
    void (*act)(Desk&);
    Event event;
    bool switchesOn;
  } cases[] = {
      {"by hand", true, true, [](Desk& d) { d.block.zoom = 0.1F; }, Event::Interrupted, true},
      {"a flag", false, true, [](Desk& d) { d.block.colorCycle = 1; }, Event::Interrupted, false},
      {"no change", true, true, [](Desk& d) { d.block.glow = 7; }, Event::None, true},
      {"autopilot", true, true, [](Desk& d) { d.block.autopilot = 1; }, Event::AutopilotTookOver,
       false},
      {"autopilot later", true, false, [](Desk& d) { d.block.autopilot = 1; },
       Event::AutopilotTookOver, false},
      {"autopilot in a blend", false, true, [](Desk& d) { d.block.autopilot = 1; },
       Event::Interrupted, false},
      {"stop", true, true, [](Desk& d) { d.switcher.Stop(); }, Event::None, false},
      {"nothing runs", false, false, [](Desk& d) { d.block.autopilot = 1; }, Event::None, false},
  };
  for (const auto& [what, switching, blending, act, event, switchesOn] : cases) {
    SCOPED_TRACE(what);
    Desk desk;
    if (switching) desk.switcher.Start(10);
    if (blending) desk.switcher.BlendTo(Target(), 4);
    desk.At(0);
    desk.At(1);
    act(desk);
    const Settings stood = desk.block;
    EXPECT_EQ(desk.At(1.5), event);
    EXPECT_EQ(desk.switcher.IsSwitching(), switchesOn);
    if (event == Event::None && switchesOn) continue; // goes on
    EXPECT_FALSE(desk.switcher.IsBlending());
    desk.At(4);
    EXPECT_TRUE(SameLook(desk.block, stood)) << "it ends where it stands";
    EXPECT_EQ(desk.block.autopilot, stood.autopilot);
    EXPECT_EQ(desk.At(10), switchesOn ? Event::WantsPreset : Event::None);
  }
}

TEST(PresetSwitcher, StartingEndsTheAutopilotOnce) {
  Desk desk;
  desk.block.autopilot = 1;
  desk.switcher.Start(10);
  EXPECT_EQ(desk.At(0), Event::None);
  EXPECT_EQ(desk.block.autopilot, 0);
  EXPECT_TRUE(desk.switcher.IsSwitching());
  desk.block.autopilot = 1;
  EXPECT_EQ(desk.At(1), Event::AutopilotTookOver);
  EXPECT_EQ(desk.block.autopilot, 1);

  desk.switcher.Start(10);
  desk.switcher.Stop(); // before any step
  desk.At(2);
  EXPECT_EQ(desk.block.autopilot, 1);
}

} // namespace
} // namespace halvenor
