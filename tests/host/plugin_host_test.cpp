#include "host/plugin_host.h"
#include "host/track_records.h"
#include "tests/support/fake_plugin.h"
#include "tests/support/plain_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <vector>

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

HostMessage Registration(VisualHandlerProc handler) {
  HostMessage message = EmptyRequest();
  RegistrationBody& body = message.body.registration;
  std::memcpy(body.name,
              "\x04"
              "Caf\x8E",
              5);
  body.options = kWantsIdleMessages;
  body.creator = Code("hook");
  body.handler = handler;
  body.timeBetweenData = 50;
  body.waveformChannels = 1;
  body.spectrumChannels = 2;
  body.minWidth = 64;
  body.maxWidth = 32767;
  body.minHeight = 65;
  body.maxHeight = 32766;
  return message;
}

/// A plug-in that registers, answers every message with 0, and notes what it got; and a host.
class PluginHostTest : public testing::Test, public PlainHost {
protected:
  PluginHostTest() {
    plugin_.entry = [this](FourCharCode code, void* record) {
      received_.push_back(code);
      if (code != message::kInit) return status::kOk;
      PluginInitMessage init;
      std::memcpy(&init, record, sizeof init);
      EXPECT_EQ(init.majorVersion, 10u);
      EXPECT_EQ(init.minorVersion, 1u);
      cookie_ = init.appCookie;
      proc_ = init.appProc;
      return register_();
    };
    register_ = [this] {
      HostMessage message = Registration(plugin_.registered);
      return proc_(cookie_, request::kRegisterVisualPlugin, &message);
    };
    plugin_.handler = [this](FourCharCode code, VisualMessage* record, void* refCon) {
      received_.push_back(code);
      if (code == message::kInit) {
        record->init.refCon = &refConTarget_;
      } else {
        EXPECT_EQ(refCon, &refConTarget_);
      }
      return answer_(code);
    };
  }
  ~PluginHostTest() override { plugin_ = {}; }

  std::unique_ptr<PluginHost> MakeHost() { return Load(FAKE_PLUGIN); }
  std::unique_ptr<PluginHost> MakeActiveHost() {
    auto host = MakeHost();
    EXPECT_EQ(host->Init(), status::kOk);
    received_.clear();
    return host;
  }

  FakePlugin& plugin_ = LoadedFakePlugin(FAKE_PLUGIN);
  std::function<Status()> register_;
  std::function<Status(FourCharCode)> answer_ = [](FourCharCode) { return status::kOk; };
  void* cookie_ = nullptr;
  HostProc proc_ = nullptr;
  int refConTarget_ = 0;
  std::vector<FourCharCode> received_; ///< by the entry and the handler
};

TEST_F(PluginHostTest, TakesTheRegistration) {
  const auto host = MakeHost();
  ASSERT_TRUE(host) << error;
  const PluginRegistration& registration = host->Registration();
  EXPECT_EQ(registration.name, "Café");
  EXPECT_EQ(registration.creator, Code("hook"));
  EXPECT_EQ(registration.options, kWantsIdleMessages);
  EXPECT_EQ(registration.millisecondsBetweenData, 50u);
  EXPECT_EQ(registration.waveformChannels, 1u);
  EXPECT_EQ(registration.spectrumChannels, 2u);
  EXPECT_EQ(registration.minWidth, 64);
  EXPECT_EQ(registration.minHeight, 65);
  EXPECT_EQ(registration.maxWidth, 32767);
  EXPECT_EQ(registration.maxHeight, 32766);
}

TEST_F(PluginHostTest, RefusesPluginsThatDoNotRegister) {
  const auto registerAs = [this](HostMessage message) {
    EXPECT_EQ(proc_(cookie_, request::kRegisterVisualPlugin, &message), kBadRequestRecord);
    return status::kOk; // as plug-ins do, whatever the host answered
  };
  HostMessage nameless = Registration(plugin_.registered);
  nameless.body.registration.name[0] = 0;
  const struct {
    std::function<Status()> behavior;
    const char* reason;
  } cases[] = {
      {[] { return status::kOk; }, "did not register"},
      {[] { return Status{-7}; }, "status -7"},
      {[&] { return registerAs(Registration(nullptr)); }, "did not register"},
      {[&] { return registerAs(nameless); }, "did not register"},
  };
  for (const auto& [behavior, reason] : cases) {
    register_ = behavior;
    EXPECT_FALSE(MakeHost());
    EXPECT_THAT(error, HasSubstr(reason));
  }
}

// As the plug-in itself tells them.
TEST_F(PluginHostTest, SendsEachMessageWithItsRecord) {
  std::string told;
  plugin_.entry = nullptr;
  plugin_.handler = nullptr;
  plugin_.told = [&](const std::string& line) { told = line; };
  const auto host = MakeHost();
  EXPECT_EQ(host->Init(), status::kOk);
  HalvenorPort port{};
  port.kind = kHalvenorPortWaylandSurface;
  port.bounds = {1, 2, 3, 4};
  RenderVisualData data{};
  TrackInfo track = MakeTrackInfo("A", "B");
  StreamInfo stream = MakeStreamInfo("C");
  const std::pair<std::function<bool()>, const char*> steps[] = {
      {[&] { return host->Show(&port, port.bounds, kFullScreenOption) == 0; },
       "[show] wayland whole nothing 4x3 options 1"},
      {[&] {
         return host->SetWindow(&port, {1, 2, 3, 5}, 0) == 0;
       },
       "[swin] wayland part nothing 5x3 options 0"},
      {[&] { return host->RenderData(&data, 77) == 0; }, "[vrnd] silence 77"},
      {[&] { return host->Play(&track, &stream) == 0; }, "[vply] A - B | C"},
      {[&] { return host->ChangeTrack(nullptr, &stream) == 0; }, "[ctrk] | C"},
      {[&] { return host->Pause() == 0; }, "[vpau]"},
      {[&] { return host->Unpause() == 0; }, "[vunp]"},
      {[&] { return host->Stop() == 0; }, "[vstp]"},
      {[&] { return host->Idle() == 0; }, "[null]"},
      {[&] { return host->Configure() == 0; }, "[cnfg]"},
      {[&] { return host->Key('c', false); }, "[vevt] 99"},
      {[&] { return !host->Key('\x8E', true); }, "[vevt] 142 repeated"},
      {[&] { return host->Hide() == 0; }, "[hide]"},
      {[&] { return host->Cleanup() == 0; }, "[clr ]"},
  };
  for (const auto& [send, line] : steps) {
    EXPECT_TRUE(send()) << line;
    EXPECT_EQ(told, line);
  }
}

TEST_F(PluginHostTest, SendsNothingOutsideAnActivationNorWhatIsNotWanted) {
  auto host = MakeHost();
  received_.clear();
  RenderVisualData data{};
  EXPECT_EQ(host->RenderData(&data, 0), status::kNotHandled);
  EXPECT_EQ(host->Hide(), status::kNotHandled);
  EXPECT_EQ(host->Cleanup(), status::kOk);
  host->Init();
  EXPECT_EQ(host->Configure(), status::kNotHandled) << "not asked for when registering";
  EXPECT_THAT(received_, ElementsAre(message::kInit));
}

TEST_F(PluginHostTest, EndsWhatHasBegun) {
  HalvenorPort port{};
  auto host = MakeActiveHost();
  host->Show(&port, {}, 0);
  host.reset();
  EXPECT_THAT(received_, ElementsAre(message::kShow, message::kHide, message::kCleanup,
                                     message::kCleanup)); // the handler's, then the entry's

  host = MakeActiveHost();
  answer_ = [](FourCharCode code) { return code == message::kShow ? Status{1001} : 0; };
  EXPECT_EQ(host->Show(&port, {}, 0), 1001);
  host.reset();
  EXPECT_THAT(received_, ElementsAre(message::kShow, message::kCleanup, message::kCleanup));
}

TEST_F(PluginHostTest, WhatFramesAreForGoesToThePortThatIsShown) {
  HalvenorPort ports[3] = {};
  const auto uses = [&ports] {
    return std::vector<int>{ports[0].frameUse, ports[1].frameUse, ports[2].frameUse};
  };
  const auto host = MakeActiveHost();
  host->SetFrameUse(kHalvenorFrameUndrawn);
  host->SetWindow(&ports[2], {}, 0); // is not shown
  host->Show(&ports[0], {}, 0);
  EXPECT_THAT(uses(), ElementsAre(kHalvenorFrameUndrawn, 0, 0));
  host->SetWindow(&ports[1], {}, 0);
  host->Step(1, kHalvenorFrameTrailsOnly);
  host->Hide();
  host->SetFrameUse(kHalvenorFrameTimely);
  EXPECT_THAT(uses(), ElementsAre(kHalvenorFrameUndrawn, kHalvenorFrameTrailsOnly, 0));
}

TEST_F(PluginHostTest, AnActivationNeedsAPluginThatSetItselfUp) {
  const struct {
    Status answer;
    bool setsUp;
    bool activated;
  } cases[] = {{0, true, true}, {0, false, true}, {-43, true, true}, {-108, false, false}};
  for (const auto& [answer, setsUp, activated] : cases) {
    const auto host = MakeHost();
    plugin_.handler = [&, answer = answer, setsUp = setsUp](FourCharCode code,
                                                            VisualMessage* record, void*) {
      if (code == message::kInit && setsUp) record->init.refCon = &refConTarget_;
      return answer;
    };
    EXPECT_EQ(host->Init(), answer);
    EXPECT_EQ(host->IsInitialized(), activated) << answer;
  }
}

TEST_F(PluginHostTest, AnswersTheRequests) {
  const auto host = MakeActiveHost();

  std::uint32_t block[2] = {1, 2};
  HostMessage message = EmptyRequest();
  message.body.pluginData = {block, sizeof block, 0};
  EXPECT_EQ(proc_(cookie_, request::kSetPluginData, &message), status::kOk);
  std::uint32_t readBack[3] = {};
  message = EmptyRequest();
  message.body.pluginData = {readBack, sizeof readBack, 0};
  EXPECT_EQ(proc_(cookie_, request::kGetPluginData, &message), status::kOk);
  EXPECT_EQ(std::uint32_t{message.body.pluginData.sizeRead}, 8u);
  EXPECT_EQ(readBack[1], 2u);

  FileSpec spec;
  message = EmptyRequest();
  message.body.fileSpec.fileSpec = &spec;
  EXPECT_EQ(proc_(cookie_, request::kGetPluginFileSpec, &message), status::kOk);
  const std::string file = std::filesystem::path(FAKE_PLUGIN).filename();
  EXPECT_EQ(std::string(reinterpret_cast<char*>(spec.bytes) + 7, spec.bytes[6]), file);

  std::vector<bool> switches;
  setFullScreen = [&](bool on) {
    switches.push_back(on);
    return Status{-9};
  };
  message = EmptyRequest();
  message.body.fullScreen.fullScreen = 1;
  EXPECT_EQ(proc_(cookie_, request::kSetFullScreen, &message), -9);
  message.body.fullScreen.fullScreen = 0;
  proc_(cookie_, request::kSetFullScreen, &message);
  EXPECT_THAT(switches, ElementsAre(true, false));

  message = EmptyRequest();
  message.body.fullScreenOptions = {16, 24, 32, 4464, -480};
  EXPECT_EQ(proc_(cookie_, request::kSetFullScreenOptions, &message), status::kOk);
  EXPECT_EQ(fullScreenOptions.minBitDepth, 16);
  EXPECT_EQ(fullScreenOptions.maxBitDepth, 24);
  EXPECT_EQ(fullScreenOptions.preferredBitDepth, 32);
  EXPECT_EQ(fullScreenOptions.desiredWidth, 4464);
  EXPECT_EQ(fullScreenOptions.desiredHeight, -480);
}

TEST_F(PluginHostTest, BearsBadRequests) {
  const auto host = MakeActiveHost();
  const auto with = [](const std::function<void(HostMessage&)>& change) {
    HostMessage message = EmptyRequest();
    change(message);
    return message;
  };
  struct {
    FourCharCode code;
    HostMessage message;
    Status answer;
  } cases[] = {
      {Code("what"), EmptyRequest(), status::kNotHandled},
      {request::kRegisterVisualPlugin, Registration(plugin_.registered),
       kBadRequestRecord},                                              // again
      {request::kGetPluginFileSpec, EmptyRequest(), kBadRequestRecord}, // null
      {request::kGetPluginData, with([](auto& m) { m.body.pluginData.size = 4; }),
       kBadRequestRecord},
      {request::kSetPluginData, with([](auto& m) { m.body.pluginData.size = 4; }),
       kBadRequestRecord},
      {request::kSetFullScreen, with([](auto& m) { m.majorVersion = 9; }), kBadRequestRecord},
      {request::kSetFullScreen, with([](auto& m) { m.size = sizeof m - 1; }), kBadRequestRecord},
  };
  for (auto& row : cases)
    EXPECT_EQ(proc_(cookie_, row.code, &row.message), row.answer);
  EXPECT_EQ(proc_(cookie_, request::kSetFullScreen, nullptr), kBadRequestRecord);
  EXPECT_EQ(proc_(nullptr, request::kSetFullScreen, &cases[0].message), kBadRequestRecord);
}

// A host may well tear everything down while it answers.
TEST_F(PluginHostTest, MessagesMayBeSentFromInsideAnAnswer) {
  HalvenorPort port{};
  auto host = MakeActiveHost();
  host->Show(&port, {}, 0);
  setFullScreen = [&](bool) {
    host->SetWindow(&port, {}, 0);
    return host->Cleanup();
  };
  answer_ = [&](FourCharCode code) {
    HostMessage message = EmptyRequest();
    return code == message::kEvent ? proc_(cookie_, request::kSetFullScreen, &message) : 0;
  };
  EXPECT_TRUE(host->Key('c', false));
  EXPECT_FALSE(host->IsShown());
  host.reset();
  EXPECT_THAT(received_, ElementsAre(message::kShow, message::kEvent, message::kSetWindow,
                                     message::kHide, message::kCleanup, message::kCleanup));
}

} // namespace
} // namespace halvenor
