// The texts over the picture.
#include "gl_calls/gl.h"
#include "renderer/renderer.h"
#include "renderer/surface/font_system.h"
#include "scene/c_numbers.h"

#include <cstdio>
#include <string>

namespace halvenor {
namespace {

constexpr char kSettingsFormat[] =
    "\n Halvenor Settings\n--------------------------\n\nNum Lines  %.0f \nIntensity:  %.2f "
    "\nFade: "
    " %.2f \n\nZoom:  %.2f \nZoom Rotation:  %.0f\n\nInner color - \n    red: %.2f \n    green: "
    "%.2f \n    blue: %.2f\n\nOuter color - \n    red: %.2f \n    green: %.2f \n    blue: "
    "%.2f\n\nSmoothing %s \nGlow %s \nColor Cycle %s \nSharp Overlay %s\n\nAutopilot %s";
static_assert(sizeof kSettingsFormat == 327 + 1);

constexpr char kHelpText[] =
    "\n     Halvenor Help\n--------------------------\nKeyboard Settings:\n a : Toggle Autopilot\n "
    "c "
    ": Open Config\n h : Show Help\n i : Show Settings\n l : Log Settings\n r : Randomise "
    "Settings\n s : Save New Preset";
static_assert(sizeof kHelpText == 201 + 1);

constexpr std::size_t kPanelTextSize = 1024;

const char* OnOff(std::int32_t flag) {
  return flag != 0 ? "ON" : "OFF";
}

void FormatSettings(const Settings& settings, char (&text)[kPanelTextSize]) {
  const auto& [inner, outer] = std::pair(settings.innerColor, settings.outerColor);
  const CNumbers plain;
  std::snprintf(text, sizeof text, kSettingsFormat, double{settings.numLines},
                double{settings.intensity}, double{settings.fade}, double{settings.zoom},
                double{settings.zoomRotation}, double{inner.red}, double{inner.green},
                double{inner.blue}, double{outer.red}, double{outer.green}, double{outer.blue},
                OnOff(settings.smoothing), OnOff(settings.glow), OnOff(settings.colorCycle),
                OnOff(settings.sharpOverlay), OnOff(settings.autopilot));
}

// Halves what lies behind the panel, over the whole height.
void DarkenRightEdge(float width) {
  glColor4f(0.0F, 0.0F, 0.0F, 0.5F);
  glBlendFunc(GL_ONE, GL_SRC_ALPHA);
  glBegin(GL_TRIANGLE_STRIP);
  glVertex2f(1.0F - width, 1.0F);
  glVertex2f(1.0F, 1.0F);
  glVertex2f(1.0F - width, -1.0F);
  glVertex2f(1.0F, -1.0F);
  glEnd();
  glBlendFunc(GL_SRC_ALPHA, GL_ONE);
}

} // namespace

struct Renderer::TextUnits {
  float cw; ///< half the font size across, in the picture's units
  float lh; ///< half a text line down
};

void Renderer::DrawText(VisualPluginData* data) {
  FontSystem::SetSize(data->settings.fontSize);
  glLoadIdentity();
  glColor4f(1.0F, 1.0F, 1.0F, 0.3F);
  glDisable(GL_TEXTURE_2D);
  glEnable(GL_BLEND);
  spectrum.DrawText();

  const auto size = static_cast<float>(FontSystem::GetSize());
  const TextUnits units = {size / static_cast<float>(display.Width()),
                           size * 1.5F / static_cast<float>(display.Height())};
  DrawTrackLines(*data, units);
  if (showSettings != 0 || showHelp != 0) DrawPanel(data->settings, units);
  if (data->settings.showFrameRate != 0) DrawFrameRate(units);
  if (messageTime > 0.0F) DrawMessage(units);
}

void Renderer::DrawTrackLines(const VisualPluginData& data, const TextUnits& units) const {
  // A line shows fully until its last tenth of a second.
  const auto draw = [&units](std::int32_t time, const std::string* text) {
    glColor4f(1.0F, 1.0F, 1.0F, static_cast<float>(time) * 0.01F);
    if (text != nullptr)
      FontSystem::DrawCString(text->c_str(), units.cw - 1.0F, units.lh * 0.5F - 1.0F);
  };
  if (data.trackTextTime <= 0 && data.streamTextTime <= 0) return;
  if (data.trackTextTime > 0) draw(data.trackTextTime, data.trackText);
  draw(data.streamTextTime, data.streamText);
}

void Renderer::DrawPanel(const Settings& settings, const TextUnits& units) const {
  DarkenRightEdge(25.0F * units.cw);
  glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
  char text[kPanelTextSize];
  if (showSettings != 0) FormatSettings(settings, text);
  FontSystem::DrawCString(showSettings != 0 ? text : kHelpText, 1.0F - 24.0F * units.cw, 1.0F);
}

void Renderer::DrawFrameRate(const TextUnits& units) const {
  char text[32];
  const CNumbers plain;
  std::snprintf(text, sizeof text, "%.1f fps", static_cast<double>(fps));
  glColor4f(1.0F, 1.0F, 1.0F, 0.5F);
  FontSystem::DrawCString(text, 1.0F - 8.0F * units.cw, units.lh * 0.5F - 1.0F);
}

void Renderer::DrawMessage(const TextUnits& units) {
  glColor4f(1.0F, 1.0F, 1.0F, messageTime * 2.0F);
  FontSystem::DrawCString(message.c_str(), units.cw - 1.0F, 1.0F);
  messageTime = static_cast<float>(messageTime - 1.0 / fps);
}

} // namespace halvenor
