#include "renderer/font_system.h"
#include "renderer/renderer.h"

#include <GL/gl.h>

#include <cstdio>

namespace halvenor {

Status Renderer::KeyboardInput(VisualPluginData*, char) {
  return status::kNotHandled;
}

void Renderer::DrawText(VisualPluginData* data) {
  const Settings& settings = data->settings;
  FontSystem::SetSize(settings.fontSize);
  glLoadIdentity();
  glColor4f(1.0F, 1.0F, 1.0F, 0.3F);
  glDisable(GL_TEXTURE_2D);
  glEnable(GL_BLEND);
  spectrum.DrawText();

  // Half the font size across, and half a text line down, in the picture's units.
  const auto size = static_cast<float>(FontSystem::GetSize());
  const float cw = size / static_cast<float>(display.Width());
  const float lh = size * 1.5F / static_cast<float>(display.Height());

  if (settings.showFrameRate != 0) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f fps", static_cast<double>(fps));
    glColor4f(1.0F, 1.0F, 1.0F, 0.5F);
    FontSystem::DrawCString(text, 1.0F - 8.0F * cw, lh * 0.5F - 1.0F);
  }
}

} // namespace halvenor
