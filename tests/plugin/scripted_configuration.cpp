// A configuration module for the suite: every entry says in the debug log that it was called.
// "initializeBundle" calls back at once, "orderWindowFront" changes a setting under the guard, and
// "LogSettings" fails.
#include "platform/carbon.h"
#include "platform/guard.h"
#include "protocol/configuration_entries.h"
#include "protocol/visual_plugin_data.h"

#include <cstring>
#include <string>

using namespace halvenor;

namespace {

ConfigurationCallback callBack = nullptr;

void Say(const std::string& text) {
  const std::string message = static_cast<char>(text.size()) + text;
  DebugStr(reinterpret_cast<ConstStr255Param>(message.c_str()));
}

} // namespace

extern "C" {

[[gnu::visibility("default")]] Status initializeBundle(ConfigurationCallback callback,
                                                       VisualPluginData* record) {
  std::string text = "initializeBundle";
  for (const int code : {0, 1, 2})
    text += ' ' + std::to_string(callback(record, code));
  callBack = callback;
  Say(text);
  return status::kOk;
}

[[gnu::visibility("default")]] Status orderWindowFront() {
  Say("orderWindowFront");
  const RecordGuard guard;
  guard.Record()->settings.intensity += 0.25F;
  return callBack(guard.Record(), configuration_code::kStoreSettings);
}

[[gnu::visibility("default")]] Status AddPreset() {
  Say("AddPreset");
  return status::kOk;
}

[[gnu::visibility("default")]] Status SwitchToManual() {
  Say("SwitchToManual");
  return status::kOk;
}

[[gnu::visibility("default")]] Status LogSettings() {
  Say("LogSettings");
  return 3;
}

} // extern "C"

static_assert(std::is_same_v<decltype(&initializeBundle), InitializeConfigurationEntry>);
static_assert(std::is_same_v<decltype(&orderWindowFront), ConfigurationActionEntry>);
