// The one symbol that the module exports.
#include "shell/registration.h"

extern "C" __attribute__((visibility("default"))) halvenor::Status
iTunesPluginMainMachO(halvenor::FourCharCode message, void* messageInfo, void* /*refCon*/) {
  using namespace halvenor;
  switch (message) {
  case message::kCleanup:
    return status::kOk;
  case message::kInit: {
    const auto* init = static_cast<const PluginInitMessage*>(messageInfo);
    if (init == nullptr || init->appProc == nullptr) return status::kNotHandled; // no host to ask
    RegisterVisualPlugin(init);
    return status::kOk;
  }
  default:
    return status::kNotHandled;
  }
}
