// The one object that turns the plug-in's state into pictures.
#pragma once

#include "gl/pbuffer_blur.h"
#include "platform/carbon.h"
#include "protocol/visual_plugin_data.h"
#include "renderer/configuration_actions.h"
#include "renderer/surface/display.h"
#include "scene/logo_overlay.h"
#include "scene/spectrum.h"

#include <array>
#include <cstdint>
#include <string>

namespace halvenor {

/// Made once when the plug-in registers, opened and closed many times. Every operation needs the
/// plug-in's lock; `Open`, `Close` and `Resize` run on the host's thread, `Open` and `Close` never
/// while a frame is drawn.
class Renderer {
public:
  /// How many values of a look the autopilot moves.
  static constexpr std::size_t kDriftingValueCount = 11;

  Renderer();
  ~Renderer();
  Renderer(const Renderer&) = delete;
  Renderer& operator=(const Renderer&) = delete;

  /// Makes the renderer ready to draw into `rect` of `port`, closing it first when it is open.
  /// 1 on success; 0 on a failure, which has been reported and has left nothing behind.
  std::int32_t Open(GrafPtr port, const Rect* rect);

  /// Releases all GL resources. Does nothing when closed.
  void Close();

  /// Follows the host's rectangle. 1 on success; 0 when closed or on a reported failure.
  std::int32_t Resize(GrafPtr port, const Rect* rect);

  /// Draws one frame. Draws nothing, and leaves the frame clock alone, when closed or without
  /// `data`.
  void Render(VisualPluginData* data);

  /// Acts on a key. 0 when it is a command, -4 when the host may use it.
  Status KeyboardInput(VisualPluginData* data, char key);

  /// A fresh random look at once.
  void RandomizeSettings(VisualPluginData* data);

  /// The autopilot: called once a frame, it lets the look drift, at most 20 times a second.
  void UpdateSettings(VisualPluginData* data);

  /// Where keys that concern presets go; null: nowhere. Must outlive the renderer.
  void SetConfigurationActions(const ConfigurationActions* actions) { configuration = actions; }

  [[nodiscard]] bool IsOpen() const { return isOpen != 0; }
  /// Smoothed frames per second.
  [[nodiscard]] float FramesPerSecond() const { return fps; }
  /// Length of the last frame interval in twentieths of a second.
  [[nodiscard]] float FrameScale() const { return frameScale; }

private:
  /// Advances the frame clock: rate, scale and the display times of the message lines. Always 1.
  std::int32_t EnterNewFrame(VisualPluginData* data);
  /// Draws the frame into the current offscreen buffer: the frame before it zoomed and faded, the
  /// lines over it; then blurs it.
  void DrawOffscreen(const VisualPluginData& data);
  void DrawZoomedImage(const VisualPluginData& data) const;
  void StartWindow();
  void DrawLinesDirectly();
  void DrawText(VisualPluginData* data);
  struct TextUnits;
  void DrawTrackLines(const VisualPluginData& data, const TextUnits& units) const;
  void DrawPanel(const Settings& settings, const TextUnits& units) const;
  void DrawFrameRate(const TextUnits& units) const;
  void DrawMessage(const TextUnits& units);
  void ReportFrameErrors();
  /// Releases what an opening has made, the context last.
  void ReleaseResources();

  struct KeyCommand;
  static const KeyCommand kKeyCommands[];
  void ShowMessage(const char* text);
  void ToggleAutopilot(VisualPluginData* data);
  void ToggleHelp(VisualPluginData* data);
  void ToggleSettings(VisualPluginData* data);
  void LogSettings(VisualPluginData* data);
  void RandomizeAndHold(VisualPluginData* data);
  void SavePreset(VisualPluginData* data);
  void DoNothing(VisualPluginData* data);

  PBufferBlur blur; ///< the feedback image and the glow
  Spectrum spectrum;
  LogoOverlay logo;
  Display display;
  std::int32_t isOpen = 0;
  std::int32_t inFrame = 0; ///< raised while a frame is drawn
  std::int32_t showSettings = 0;
  std::int32_t showHelp = 0;
  std::string message;      ///< feedback of the last command
  float messageTime = 0.0F; ///< seconds it stays
  AbsoluteTime lastFrameTime;
  float fps = 0.0F;
  float frameScale = 0.0F;
  std::array<float, kDriftingValueCount> autopilotTargets{};
  const ConfigurationActions* configuration = nullptr;
};

} // namespace halvenor
