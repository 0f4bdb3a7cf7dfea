// A plug-in module whose every answer the test decides.
#pragma once

#include "protocol/records.h"

#include <functional>

namespace halvenor {

/// What the module does when its entry and its handler are called.
struct PluginScript {
  std::function<Status(FourCharCode, void* record)> entry;
  std::function<Status(FourCharCode, VisualMessage*, void* refCon)> handler;
};

/// Exported by the module: the script, and the handler that follows it.
struct ScriptedPlugin {
  PluginScript script;
  VisualHandlerProc handler;
};
using ScriptedPluginProc = ScriptedPlugin* (*)();
inline constexpr char kScriptedPluginName[] = "HalvenorScriptedPlugin";

} // namespace halvenor
