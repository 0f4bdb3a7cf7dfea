// The logo that shows when the visualizer is shown for the first time.
#pragma once

#include "platform/carbon.h"
#include "renderer/surface/display.h"
#include "scene/texture_image.h"

#include <cstdint>

namespace halvenor {

/// Shows for the first two seconds of a run, fades and grows in the last 0.4 of them, and is
/// retired by the next frame. Its clock starts with the process's first `Open` and never again.
/// Every operation needs the plug-in's lock and, until the logo is retired, a current GL context.
class LogoOverlay {
public:
  LogoOverlay() = default;
  ~LogoOverlay();
  LogoOverlay(const LogoOverlay&) = delete;
  LogoOverlay& operator=(const LogoOverlay&) = delete;

  /// Loads the picture; one that cannot be loaded has been reported, and is not drawn.
  /// `newDisplay` must stay until `Close`. Does nothing once the logo is retired.
  void Open(Display* newDisplay);

  /// Releases what `Open` made. Allowed at any time, also twice.
  void Close();

  /// Draws the logo as it looks now, with the caller's blending; leaves texturing on. Needs an
  /// `Open` before it.
  void Render();

private:
  void Draw(float seconds) const;

  AbsoluteTime startTime = 0;
  std::int32_t visible = 1; ///< 0: retired
  TextureImage image;
  Display* display = nullptr;
};

} // namespace halvenor
