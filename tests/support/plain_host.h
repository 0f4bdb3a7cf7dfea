// A host that keeps its plug-in's block in memory and grants every wish.
#pragma once

#include "host/plugin_host.h"

#include <gtest/gtest.h>

#include <functional>

namespace halvenor {

class PlainHost : public HostServices {
public:
  /// A host of the plug-in at `path`, which has registered; null and a line in `error` otherwise.
  std::unique_ptr<PluginHost> Load(const std::filesystem::path& path) {
    const auto module = PluginModule::Load(path, error);
    EXPECT_TRUE(module) << error;
    return module ? PluginHost::Create(*module, *this, error) : nullptr;
  }

  PreferenceStore& Preferences() override { return preferences; }
  Status SetFullScreen(bool on) override { return setFullScreen ? setFullScreen(on) : status::kOk; }
  Status SetFullScreenOptions(const FullScreenOptions& options) override {
    fullScreenOptions = options;
    return status::kOk;
  }

  MemoryPreferenceStore preferences;
  std::function<Status(bool)> setFullScreen;
  FullScreenOptions fullScreenOptions;
  std::string error;
};

} // namespace halvenor
