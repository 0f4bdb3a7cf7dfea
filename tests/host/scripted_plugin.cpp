#include "tests/host/scripted_plugin.h"

using namespace halvenor;

extern "C" __attribute__((visibility("default"))) ScriptedPlugin* HalvenorScriptedPlugin() {
  static ScriptedPlugin plugin{{}, [](FourCharCode code, VisualMessage* record, void* refCon) {
                                 return HalvenorScriptedPlugin()->script.handler(code, record,
                                                                                 refCon);
                               }};
  return &plugin;
}

extern "C" __attribute__((visibility("default"))) Status
iTunesPluginMainMachO(FourCharCode code, void* record, void*) {
  return HalvenorScriptedPlugin()->script.entry(code, record);
}
