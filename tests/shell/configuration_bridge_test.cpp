// The way to the configuration window, over a module that the suite makes up.
#include "gl/diagnostics.h"
#include "protocol/configuration_entries.h"
#include "shell/configuration_bridge.h"
#include "tests/shell/shell_test.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <utility>

namespace halvenor {
namespace {

using testing::ElementsAre;

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines)
    text += (text.empty() ? "" : "|") + line;
  return text;
}

/// The module: what happens in an entry, by its name, and which were called, with the lock in which
/// state.
struct Module {
  std::map<std::string, std::function<Status()>> inside;
  std::vector<std::string> acts;
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

struct Action {
  const char* entry;
  ConfigurationActionEntry exported;
  void (*act)(VisualPluginData* record);
  char key;
  std::string performed; ///< what the module sees of it
  std::string missing;
};

template <const char* kName>
Action Forwarded(void (*act)(VisualPluginData*), char key) {
  return {kName,
          Entry<kName>,
          act,
          key,
          kName + std::string(" held"),
          std::string(" Can't find ") + kName + " function"};
}

const Action kActions[] = {
    {configuration_entry::kOrderWindowFront, Entry<configuration_entry::kOrderWindowFront>,
     OpenConfigWindow, 'c', "orderWindowFront free", " Can't find orderWindow function"},
    Forwarded<configuration_entry::kAddPreset>(AddPreset, 's'),
    Forwarded<configuration_entry::kSwitchToManual>(SwitchPresetsToManual, 'r'),
    Forwarded<configuration_entry::kLogSettings>(LogSettings, 'l'),
};

std::atomic<std::uint64_t> drawnFrames = 0;

class ConfigurationBridge : public ShellTest {
protected:
  void SetUp() override {
    ShellTest::SetUp();
    PutModule();
    port_.frameFinished = [](void*, const HalvenorFrame*) { ++drawnFrames; };
    // In one list with the lines, for the order.
    SetAlertSound([](int ticks) { DebugLog("alert %i", ticks); });
    host_.Init();
    host_.requests.clear();
  }
  void TearDown() override {
    ShellTest::TearDown();
    SetAlertSound(nullptr);
    SetFrontWindow(nullptr);
    bundleRef = nullptr;
  }
  static void PutModule() {
    stand_ins::SetSilent(true);
    module = {};
    stand_ins::SetExport(configuration_entry::kInitialize, reinterpret_cast<void*>(Initialize));
    for (const Action& action : kActions)
      stand_ins::SetExport(action.entry, reinterpret_cast<void*>(action.exported));
  }
  Status Press(char key) { return host_.SendEvent(kKeyDownEvent, static_cast<std::uint32_t>(key)); }
  std::string Log() { return Joined(log_.Take()); }
  static std::string Acts() { return Joined(std::exchange(module.acts, {})); }

  /// Presses the key of each action, with `happens` in its initializer and then in its own entry.
  void InEachEntry(const std::function<Status()>& happens,
                   const std::function<void(const Action&, bool inInitializer)>& check) {
    for (const Action& action : kActions) {
      for (const char* entry : {configuration_entry::kInitialize, action.entry}) {
        SCOPED_TRACE(action.performed + " with " + entry);
        if (host_.refCon == nullptr) host_.Init();
        host_.Show(&port_);
        module.inside = {{entry, happens}};
        host_.requests.clear();
        EXPECT_EQ(Press(action.key), 0);
        EXPECT_FALSE(mutex.HeldByThisThread());
        check(action, entry != action.entry);
      }
    }
    module.inside.clear();
  }
  int Gone() {
    EXPECT_EQ(host_.Send(message::kHide), 0);
    EXPECT_EQ(host_.Send(message::kCleanup), 0);
    return status::kOk;
  }
};

TEST_F(ConfigurationBridge, EachActionMeetsEachOutcome) {
  const std::string notInitialized = " Can't find initialize function| Can't init bundle|alert 20";
  const struct {
    const char* failing; ///< a function of the platform; null: the initializer, with 5
    std::string log;
  } obstacles[] = {
      {"CFBundleGetBundleWithIdentifier",
       " Can't find main bundle| Can't create bundle|" + notInitialized},
      {"CFBundleCopyPrivateFrameworksURL",
       " Can't copy URL| Can't find main bundle| Can't create bundle|" + notInitialized},
      {"CFURLCreateCopyAppendingPathComponent",
       " Can't create bundle URL| Can't copy URL| Can't find main bundle| Can't create bundle|" +
           notInitialized},
      {"CFBundleCreate", " Can't create bundle|" + notInitialized},
      {"CFBundleLoadExecutable", " Couldn't load exe|" + notInitialized},
      {"CFBundleGetFunctionPointerForName", notInitialized},
      {nullptr, " Can't init bundle|alert 20"},
  };
  for (const Action& action : kActions) {
    SCOPED_TRACE(action.entry);
    // What is logged, what the module sees.
    const auto act = [&] {
      const MessageScope scope;
      bundleRef = nullptr;
      action.act(host_.Record());
      EXPECT_TRUE(mutex.HeldByThisThread());
      return std::pair(Log(), Acts());
    };
    for (const auto& obstacle : obstacles) {
      const bool reached = obstacle.failing == nullptr;
      stand_ins::Reset(); // nothing is loaded
      PutModule();
      module.inside[configuration_entry::kInitialize] = [] { return 5; };
      if (!reached) stand_ins::Fail(obstacle.failing, 1);
      EXPECT_EQ(act(), std::pair(obstacle.log, std::string(reached ? "initializeBundle held" : "")))
          << (reached ? "5" : obstacle.failing);
    }
    module.inside.clear();
    const std::string both = "initializeBundle held|" + action.performed;
    EXPECT_EQ(act(), std::pair(std::string(), both)) << "whatever went before";
    module.inside[action.entry] = [] { return 7; };
    EXPECT_EQ(act(), std::pair(std::string(" Can't call function|alert 20"), both));
    stand_ins::SetExport(action.entry, nullptr);
    EXPECT_EQ(act(), std::pair(action.missing + "| Can't call function|alert 20",
                               std::string("initializeBundle held")));
  }
}

TEST_F(ConfigurationBridge, TheMessageOpensTheWindowAndEveryActionLooksAgain) {
  EXPECT_EQ(host_.Send(message::kConfigure), 0);
  EXPECT_EQ(Acts(), "initializeBundle held|orderWindowFront free");
  EXPECT_THAT(host_.requests, ElementsAre());
  int window = 0;
  const MessageScope scope;
  SetFrontWindow(&window);
  EXPECT_EQ(InitCocoaBundle(host_.Record()), 0);
  EXPECT_EQ(host_.Record()->frontWindow, &window);
  EXPECT_EQ(module.record, host_.Record());
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
}

TEST_F(ConfigurationBridge, TheCallbackStoresTheBlockAndPassesTheSize) {
  host_.Record()->settings.intensity = 0.625F;
  host_.Record()->settings.fullScreenWidth = 0x12340400;
  host_.Record()->settings.fullScreenHeight = 768;
  Settings stored{};
  host_.inside[request::kSetPluginData] = [&] {
    EXPECT_EQ(host_.lastRequest.body.pluginData.size, 116U);
    std::memcpy(&stored, host_.lastRequest.body.pluginData.data, sizeof stored);
  };
  std::string answers;
  const auto callBack = [&answers] {
    answers.clear();
    for (const int code : {0, 1, 2, -1})
      answers += std::to_string(module.callback(module.record, code)) + ' ';
    return status::kOk;
  };
  InEachEntry(callBack, [&](const Action& action, bool) {
    EXPECT_EQ(answers, "0 0 0 0 ");
    const std::string leave = action.key == 'c' ? "sful|" : ""; // first of all
    EXPECT_EQ(Joined(host_.requests), leave + "sprf|sfop");
  });
  host_.answers[request::kSetPluginData] = -34;
  host_.answers[request::kSetFullScreenOptions] = -50;
  callBack();
  EXPECT_EQ(std::memcmp(&stored, &host_.Record()->settings, sizeof stored), 0);
  const FullScreenOptionsBody& options = host_.lastRequest.body.fullScreenOptions;
  EXPECT_THAT((std::array{options.minBitDepth, options.maxBitDepth, options.preferredBitDepth,
                          options.desiredWidth, options.desiredHeight}),
              ElementsAre(16, 32, 32, 0x400, 768));
  EXPECT_EQ(answers, "-34 -50 0 0 ");
  EXPECT_EQ(Log(), "Halvenor Writing preferences, error -34|Set Full Screen error - -50");
}

TEST_F(ConfigurationBridge, TheRecordMayGoAnywhere) {
  InEachEntry([this] { return Gone(); },
              [](const Action& action, bool inInitializer) {
                // Nothing is forwarded for a record that the module was told of in vain.
                const std::string forwarded = inInitializer ? "" : "|" + action.performed;
                EXPECT_EQ(Acts(), "initializeBundle held" + forwarded);
                EXPECT_EQ(CocoaCallback(module.record, 0), status::kNotHandled);
              });
  EXPECT_EQ(CocoaCallback(nullptr, 2), 0);
  host_.Init();
  host_.inside[request::kSetFullScreen] = [this] { Gone(); };
  host_.Show(&port_);
  EXPECT_EQ(Press('c'), 0);
  EXPECT_EQ(Acts(), "");
  EXPECT_FALSE(renderer->IsOpen());

  // The host has a block to read although it released the record meanwhile.
  host_.Init();
  host_.inside[request::kSetPluginData] = [this] {
    const void* const block = host_.lastRequest.body.pluginData.data;
    EXPECT_NE(block, &host_.Record()->settings);
    Gone();
  };
  host_.answers[request::kSetPluginData] = -34;
  EXPECT_EQ(CocoaCallback(host_.Record(), 0), -34);
}

TEST_F(ConfigurationBridge, EntriesSendMessages) {
  bool nested = false;
  const auto sends = [&] {
    const bool held = mutex.HeldByThisThread();
    EXPECT_EQ(host_.SendWindow(message::kSetWindow, &port_, {0, 0, 100, 200}, 0), 0);
    EXPECT_EQ(host_.SendData(nullptr, 7), 0);
    EXPECT_EQ(host_.Send(message::kHide), 0); // joins the render thread
    EXPECT_EQ(host_.Show(&port_), 0);
    if (!std::exchange(nested, true)) {
      EXPECT_EQ(host_.Send(message::kConfigure), 0);
    }
    EXPECT_EQ(mutex.HeldByThisThread(), held);
    return status::kOk;
  };
  InEachEntry(sends, [&](const Action&, bool) {
    EXPECT_TRUE(std::exchange(nested, false));
    EXPECT_EQ(std::exchange(host_.Record()->renderTimeStampID, 0U), 7U);
  });
  EXPECT_EQ(Log(), "");
}

TEST_F(ConfigurationBridge, FramesAreDrawnOnlyWhileTheWindowIsRaised) {
  host_.Record()->settings.numLines = 2;
  host_.Record()->settings.frameDelay = 0;
  host_.Record()->settings.autopilot = 1;
  host_.Show(&port_);
  module.inside[configuration_entry::kOrderWindowFront] = [] {
    for (const std::uint64_t first = drawnFrames; drawnFrames < first + 3;)
      std::this_thread::yield();
    return status::kOk;
  };
  module.inside[configuration_entry::kInitialize] = [] {
    const std::uint64_t before = drawnFrames;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(drawnFrames, before);
    return status::kOk;
  };
  for (int i = 0; i < 20; ++i)
    EXPECT_EQ(Press(i % 2 == 0 ? 'c' : 's'), 0);
  EXPECT_EQ(module.acts.size(), 40U);
}

} // namespace
} // namespace halvenor
