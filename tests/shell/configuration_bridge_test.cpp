// The way to the configuration window, over a module that the suite makes up.
#include "gl/diagnostics.h"
#include "platform/clock.h"
#include "protocol/configuration_entries.h"
#include "shell/configuration_bridge.h"
#include "tests/shell/test_host.h"
#include "tests/stand_ins/log_lines.h"
#include "tests/stand_ins/offscreen_port.h"
#include "tests/stand_ins/stand_in_test.h"

#include <atomic>
#include <thread>

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

constexpr char kInitialized[] = "initializeBundle held";

/// The module: what happens in an entry, by its name, and which were called with the lock in which
/// state.
struct Module {
  std::map<std::string, std::function<Status()>> inside;
  Lines acts;
  ConfigurationCallback callback = nullptr;
  VisualPluginData* record = nullptr;

  Status Enter(const std::string& name) {
    acts.push_back(name + (mutex.HeldByThisThread() ? " held" : " free"));
    const auto found = inside.find(name);
    return found == inside.end() ? status::kOk : found->second();
  }
};
Module module;

template <const char* kName>
Status Entry() {
  return module.Enter(kName);
}

Status Initialize(ConfigurationCallback callback, VisualPluginData* record) {
  module.callback = callback;
  module.record = record;
  return module.Enter(configuration_entry::kInitialize);
}

template <const char* kName>
void Export() {
  stand_ins::SetExport(kName, reinterpret_cast<void*>(Entry<kName>));
}

std::atomic<std::uint64_t> frames = 0;

class ConfigurationBridge : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    stand_ins::SetSilent(true);
    ResetModule();
    port_.frameFinished = [](void*, const HalvenorFrame*) { ++frames; };
    // In one list with the lines, for the order.
    SetAlertSound([](int ticks) { DebugLog("alert %i", ticks); });
    host_.Init();
    host_.requests.clear();
  }
  void TearDown() override {
    EXPECT_FALSE(mutex.HeldByThisThread());
    if (host_.refCon != nullptr) host_.Send(message::kCleanup);
    EXPECT_EQ(renderThreadExists, 0);
    SetAlertSound(nullptr);
    SetFrontWindow(nullptr);
    bundleRef = nullptr;
    StandInTest::TearDown();
  }
  static void ResetModule() {
    module = {};
    stand_ins::SetExport(configuration_entry::kInitialize, reinterpret_cast<void*>(Initialize));
    Export<configuration_entry::kOrderWindowFront>();
    Export<configuration_entry::kAddPreset>();
    Export<configuration_entry::kSwitchToManual>();
    Export<configuration_entry::kLogSettings>();
  }
  Status Press(char key) { return host_.SendEvent(kKeyDownEvent, static_cast<std::uint32_t>(key)); }

  HalvenorPort port_ = stand_ins::OffscreenPort(640, 480);
  TestHost host_;
  stand_ins::LogLines log_;
};

struct ActionCase {
  const char* entry;
  void (*act)(VisualPluginData* record);
  char key;
  const char* state; ///< of the lock inside
  const char* missing;
};
const ActionCase kActions[] = {
    {configuration_entry::kOrderWindowFront, OpenConfigWindow, 'c', " free",
     " Can't find orderWindow function"},
    {configuration_entry::kAddPreset, AddPreset, 's', " held", " Can't find AddPreset function"},
    {configuration_entry::kSwitchToManual, SwitchPresetsToManual, 'r', " held",
     " Can't find SwitchToManual function"},
    {configuration_entry::kLogSettings, LogSettings, 'l', " held",
     " Can't find LogSettings function"},
};

// What can go wrong before the action's own entry.
struct ObstacleCase {
  const char* failing; ///< a function of the platform, or null
  Status initialized;
  Lines log;
};

TEST_F(ConfigurationBridge, EachActionMeetsEachOutcome) {
  const ObstacleCase obstacles[] = {
      {"CFBundleGetBundleWithIdentifier",
       0,
       {" Can't find main bundle", " Can't create bundle", " Can't find initialize function",
        " Can't init bundle", "alert 20"}},
      {"CFBundleCopyPrivateFrameworksURL",
       0,
       {" Can't copy URL", " Can't find main bundle", " Can't create bundle",
        " Can't find initialize function", " Can't init bundle", "alert 20"}},
      {"CFURLCreateCopyAppendingPathComponent",
       0,
       {" Can't create bundle URL", " Can't copy URL", " Can't find main bundle",
        " Can't create bundle", " Can't find initialize function", " Can't init bundle",
        "alert 20"}},
      {"CFBundleCreate",
       0,
       {" Can't create bundle", " Can't find initialize function", " Can't init bundle",
        "alert 20"}},
      {"CFBundleLoadExecutable",
       0,
       {" Couldn't load exe", " Can't find initialize function", " Can't init bundle", "alert 20"}},
      {"CFBundleGetFunctionPointerForName",
       0,
       {" Can't find initialize function", " Can't init bundle", "alert 20"}},
      {nullptr, 5, {" Can't init bundle", "alert 20"}},
  };
  for (const ActionCase& action : kActions) {
    SCOPED_TRACE(action.entry);
    const std::string performed = std::string(action.entry) + action.state;
    const auto act = [&] {
      const MessageScope scope;
      bundleRef = nullptr;
      module.acts.clear();
      action.act(host_.Record());
      EXPECT_TRUE(mutex.HeldByThisThread());
    };
    for (const ObstacleCase& obstacle : obstacles) {
      SCOPED_TRACE(obstacle.failing == nullptr ? "initialiser" : obstacle.failing);
      stand_ins::Reset(); // nothing is loaded
      ResetModule();
      module.inside[configuration_entry::kInitialize] = [&] { return obstacle.initialized; };
      if (obstacle.failing != nullptr) stand_ins::Fail(obstacle.failing, 1);
      act();
      EXPECT_THAT(log_.Take(), ElementsAreArray(obstacle.log));
      EXPECT_THAT(module.acts,
                  ElementsAreArray(obstacle.failing != nullptr ? Lines{} : Lines{kInitialized}));
      if (obstacle.failing != nullptr) stand_ins::Fail(obstacle.failing, 0, 1, 0);
    }
    module.inside.clear();
    act(); // whatever went before
    EXPECT_THAT(log_.Take(), IsEmpty());
    EXPECT_THAT(module.acts, ElementsAre(kInitialized, performed));
    module.inside[action.entry] = [] { return 7; };
    act();
    EXPECT_THAT(log_.Take(), ElementsAre(" Can't call function", "alert 20"));
    stand_ins::SetExport(action.entry, nullptr);
    act();
    EXPECT_THAT(log_.Take(), ElementsAre(action.missing, " Can't call function", "alert 20"));
    EXPECT_THAT(module.acts, ElementsAre(kInitialized));
  }
}

TEST_F(ConfigurationBridge, KeysAndTheMessageReachTheirEntries) {
  for (const ActionCase& action : kActions) {
    module.acts.clear();
    EXPECT_EQ(Press(action.key), 0);
    EXPECT_THAT(module.acts, ElementsAre(kInitialized, std::string(action.entry) + action.state));
  }
  EXPECT_THAT(host_.requests, ElementsAre("sful")); // 'c' leaves full screen first
  module.acts.clear();
  EXPECT_EQ(host_.Send(message::kConfigure), 0);
  EXPECT_THAT(module.acts, ElementsAre(kInitialized, "orderWindowFront free"));
  VisualMessage none{};
  EXPECT_EQ(VisualPluginHandler(message::kConfigure, &none, nullptr), 0);
  EXPECT_EQ(module.acts.size(), 2U) << "nothing without a record";
  EXPECT_THAT(log_.Take(), IsEmpty());
}

TEST_F(ConfigurationBridge, InitialisingTellsItsStatusAndLooksAnewEachTime) {
  int window = 0;
  const MessageScope scope;
  SetFrontWindow(&window);
  EXPECT_EQ(InitCocoaBundle(host_.Record()), 0);
  EXPECT_EQ(host_.Record()->frontWindow, &window);
  EXPECT_EQ(module.record, host_.Record());
  EXPECT_EQ(module.callback, CocoaCallback);
  SetFrontWindow(nullptr);
  module.inside[configuration_entry::kInitialize] = [] { return 5; };
  EXPECT_EQ(InitCocoaBundle(host_.Record()), 5);
  EXPECT_EQ(host_.Record()->frontWindow, nullptr);
  // An unknown folder leaves the bundle as it was found last; a bundle that has gone is null.
  stand_ins::Fail("CFBundleCopyPrivateFrameworksURL", 1, 1, 1);
  EXPECT_EQ(InitCocoaBundle(host_.Record()), 5);
  stand_ins::Fail("CFBundleCreate", 1, 1, 1);
  EXPECT_EQ(InitCocoaBundle(host_.Record()), status::kConfigurationMissing);
  EXPECT_EQ(bundleRef, nullptr);
  EXPECT_EQ(stand_ins::CallCount("CFBundleCreate"), 3U);
}

TEST_F(ConfigurationBridge, TheCallbackStoresTheBlockAndPassesTheSize) {
  host_.Record()->settings.intensity = 0.625F;
  host_.Record()->settings.fullScreenWidth = 0x12340400;
  host_.Record()->settings.fullScreenHeight = 768;
  Settings stored{};
  host_.inside[request::kSetPluginData] = [&] {
    const PluginDataBody& body = host_.lastRequest.body.pluginData;
    EXPECT_EQ(body.size, 116U);
    std::memcpy(&stored, body.data, sizeof stored);
  };
  const auto callThrice = [] {
    Lines answers;
    for (const int code : {0, 1, 2, -1})
      answers.push_back(std::to_string(module.callback(module.record, code)));
    return answers;
  };
  for (const ActionCase& action : kActions) {
    for (const char* entry : {configuration_entry::kInitialize, action.entry}) {
      SCOPED_TRACE(entry);
      Lines answers;
      module.inside = {{entry, [&] {
                          answers = callThrice();
                          return 0;
                        }}};
      host_.requests.clear();
      EXPECT_EQ(Press(action.key), 0);
      EXPECT_THAT(answers, ElementsAre("0", "0", "0", "0"));
      std::erase(host_.requests, "sful");
      EXPECT_THAT(host_.requests, ElementsAre("sprf", "sfop"));
    }
  }
  EXPECT_EQ(std::memcmp(&stored, &host_.Record()->settings, sizeof stored), 0);
  const FullScreenOptionsBody& options = host_.lastRequest.body.fullScreenOptions;
  EXPECT_THAT((std::array{options.minBitDepth, options.maxBitDepth, options.preferredBitDepth,
                          options.desiredWidth, options.desiredHeight}),
              ElementsAre(16, 32, 32, 0x400, 768));

  host_.answers[request::kSetPluginData] = -34;
  host_.answers[request::kSetFullScreenOptions] = -50;
  EXPECT_THAT(callThrice(), ElementsAre("-34", "-50", "0", "0"));
  EXPECT_THAT(log_.Take(), ElementsAre("Halvenor Writing preferences, error -34",
                                       "Set Full Screen error - -50"));
}

TEST_F(ConfigurationBridge, TheRecordMayGoAnywhere) {
  const auto goes = [this] {
    EXPECT_EQ(host_.Send(message::kHide), 0);
    EXPECT_EQ(host_.Send(message::kCleanup), 0);
    return 0;
  };
  for (const ActionCase& action : kActions) {
    const std::string performed = std::string(action.entry) + action.state;
    for (const char* entry : {configuration_entry::kInitialize, action.entry}) {
      SCOPED_TRACE(performed + " gone in " + entry);
      if (host_.refCon == nullptr) host_.Init();
      host_.Show(&port_);
      module.inside = {{entry, goes}};
      module.acts.clear();
      EXPECT_EQ(Press(action.key), 0);
      // An action is not forwarded for a record that the bundle was told of in vain.
      EXPECT_THAT(module.acts, entry == action.entry
                                   ? ElementsAreArray({kInitialized + 0, performed.c_str()})
                                   : ElementsAreArray({kInitialized + 0}));
      EXPECT_EQ(CocoaCallback(module.record, 0), status::kNotHandled);
    }
  }
  EXPECT_EQ(CocoaCallback(nullptr, 2), 0);

  host_.Init();
  host_.inside[request::kSetFullScreen] = goes;
  module.acts.clear();
  EXPECT_EQ(Press('c'), 0);
  EXPECT_THAT(module.acts, IsEmpty());

  // While its block is being stored, the host has a block to read, and a status to give.
  host_.inside.clear();
  host_.Init();
  host_.answers[request::kSetPluginData] = -34;
  host_.inside[request::kSetPluginData] = [&] {
    goes();
    std::int32_t version = 0;
    std::memcpy(&version, host_.lastRequest.body.pluginData.data, sizeof version);
    EXPECT_EQ(version, kSettingsVersion);
  };
  EXPECT_EQ(CocoaCallback(host_.Record(), 0), -34);
  EXPECT_THAT(log_.Take(), ElementsAre("Halvenor Writing preferences, error -34"));
}

TEST_F(ConfigurationBridge, EntriesSendMessages) {
  bool nested = false;
  const auto sends = [&] {
    const bool held = mutex.HeldByThisThread();
    EXPECT_EQ(host_.SendWindow(message::kSetWindow, &port_, {0, 0, 100, 200}, 0), 0);
    EXPECT_EQ(host_.SendData(nullptr, 7), 0);
    EXPECT_EQ(host_.Send(message::kHide), 0); // joins the render thread
    EXPECT_EQ(host_.Show(&port_), 0);
    if (!nested) {
      nested = true;
      EXPECT_EQ(host_.Send(message::kConfigure), 0);
    }
    EXPECT_EQ(mutex.HeldByThisThread(), held);
    return 0;
  };
  host_.Show(&port_);
  for (const ActionCase& action : kActions) {
    for (const char* entry : {configuration_entry::kInitialize, action.entry}) {
      SCOPED_TRACE(std::string(action.entry) + " from " + entry);
      nested = false;
      module.inside = {{entry, sends}};
      host_.Record()->renderTimeStampID = 0;
      EXPECT_EQ(Press(action.key), 0);
      EXPECT_TRUE(nested);
      EXPECT_FALSE(mutex.HeldByThisThread());
      EXPECT_EQ(host_.Record()->renderTimeStampID, 7U);
    }
  }
  EXPECT_THAT(log_.Take(), IsEmpty());
}

TEST_F(ConfigurationBridge, FramesAreDrawnWhileTheWindowIsRaisedAndOnlyThen) {
  host_.Record()->settings.numLines = 2;
  host_.Record()->settings.frameDelay = 0;
  host_.Record()->settings.autopilot = 1;
  host_.Show(&port_);
  module.inside[configuration_entry::kOrderWindowFront] = [] {
    for (const std::uint64_t first = frames; frames < first + 3;)
      std::this_thread::yield();
    return 0;
  };
  module.inside[configuration_entry::kInitialize] = [] {
    const std::uint64_t before = frames;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(frames, before);
    return 0;
  };
  for (int i = 0; i < 20; ++i)
    EXPECT_EQ(Press(i % 2 == 0 ? 'c' : 's'), 0);
  EXPECT_EQ(module.acts.size(), 40U);
}

} // namespace
} // namespace halvenor
