#include "renderer/renderer.h"

namespace halvenor {
namespace {

constexpr float kMessageSeconds = 3.0F;

} // namespace

struct Renderer::KeyCommand {
  char key;
  void (Renderer::*act)(VisualPluginData* data);
};

// Exact characters: capitals are no commands.
const Renderer::KeyCommand Renderer::kKeyCommands[] = {
    {'a', &Renderer::ToggleAutopilot}, {'h', &Renderer::ToggleHelp},
    {'?', &Renderer::ToggleHelp},      {'i', &Renderer::ToggleSettings},
    {'l', &Renderer::LogSettings},     {'r', &Renderer::RandomizeAndHold},
    {'s', &Renderer::SavePreset},      {'x', &Renderer::DoNothing},
};

Status Renderer::KeyboardInput(VisualPluginData* data, char key) {
  for (const KeyCommand& command : kKeyCommands) {
    if (command.key != key) continue;
    (this->*command.act)(data);
    return status::kOk;
  }
  return status::kNotHandled;
}

void Renderer::ShowMessage(const char* text) {
  message = text;
  messageTime = kMessageSeconds;
}

void Renderer::ToggleAutopilot(VisualPluginData* data) {
  data->settings.autopilot ^= 1;
  ShowMessage(data->settings.autopilot != 0 ? "\n Autopilot enabled" : "\n Autopilot disabled");
}

void Renderer::ToggleHelp(VisualPluginData*) {
  showSettings = 0;
  showHelp ^= 1;
}

void Renderer::ToggleSettings(VisualPluginData*) {
  showHelp = 0;
  showSettings ^= 1;
}

void Renderer::LogSettings(VisualPluginData* data) {
  if (configuration != nullptr) configuration->logSettings(data);
  ShowMessage("\n Settings printed to console.log");
}

void Renderer::RandomizeAndHold(VisualPluginData* data) {
  RandomizeSettings(data);
  if (configuration != nullptr) configuration->switchPresetsToManual(data);
}

void Renderer::SavePreset(VisualPluginData* data) {
  if (configuration != nullptr) configuration->addPreset(data);
  ShowMessage("\n Saved new preset");
}

void Renderer::DoNothing(VisualPluginData*) {}

} // namespace halvenor
