#include "renderer/renderer.h"

#include "gl/diagnostics.h"
#include "gl/textured_quad.h"
#include "gl_calls/gl.h"
#include "renderer/surface/font_system.h"
#include "scene/interval.h"
#include "scene/numeric.h"

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

constexpr float kFirstFps = 20.0F;
constexpr float kFirstFrameScale = 1.0F;

// Without offscreen buffers there is no feedback: the lines are drawn several times to be bright
// enough.
constexpr int kDirectDrawings = 3;

constexpr double kDegree = 3.1415829 / 180; // not quite pi: looks were made with this one

// Between these a smoothed zoom has its copies. The settings window's zooms need 22 at most; with
// the others, of a stored block, more copies would only be fainter, and cost the time of as many
// pictures.
constexpr int kFewestCopies = 2;
constexpr int kMostCopies = 32;

// By how much the feedback image grows in a twentieth of a second. Loud passages push outward, the
// long-term loudness pulls back.
float ZoomScale(const VisualPluginData& data) {
  const float level = (data.channelLevel[0] + data.channelLevel[1]) * 0.5F;
  const auto scale =
      static_cast<float>(data.settings.zoom * 0.5 + 0.75 + level * 0.2 - data.loudness * 0.1);
  if (!(level > 0.15)) return scale;
  return static_cast<float>(scale + std::sqrt(level) * 0.1);
}

// The bound texture, as a quad that reaches (x, y) from the middle.
void DrawImage(float x, float y) {
  DrawTexturedQuad(-x, -y, x, y);
}

void CountDown(std::int32_t& time, std::int32_t elapsed) {
  if (time != kShownUntilChanged && time > 0) time -= elapsed;
}

} // namespace

Renderer::Renderer() : lastFrameTime(UpTime()) {}

Renderer::~Renderer() {
  Close();
}

std::int32_t Renderer::Open(GrafPtr port, const Rect* rect) {
  Close();
  display.Open(port);
  fps = kFirstFps;
  frameScale = kFirstFrameScale;
  if (display.Resize(port, rect) == 0) {
    display.Close();
    return 0;
  }
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  blur.Create(display.Context());
  FontSystem::Open(&display);
  logo.Open(&display);
  if (const GLenum error = aglGetError(); error != AGL_NO_ERROR) {
    aglReportError("Failed to set up openGL", error);
    ReleaseResources();
    return 0;
  }
  isOpen = 1;
  return 1;
}

void Renderer::Close() {
  if (isOpen == 0) return;
  isOpen = 0;
  while (inFrame != 0) {
    DebugLog(" Rendering locked, waiting for it to finish");
    YieldToAnyThread();
  }
  display.MakeCurrent();
  ReleaseResources();
}

void Renderer::ReleaseResources() {
  blur.Destroy();
  FontSystem::Close();
  logo.Close();
  display.Close();
}

std::int32_t Renderer::Resize(GrafPtr port, const Rect* rect) {
  return display.Resize(port, rect);
}

void Renderer::Render(VisualPluginData* data) {
  if (isOpen == 0 || data == nullptr) return;
  if (EnterNewFrame(data) == 0) return;
  inFrame = 1;
  if (data->settings.autopilot != 0) UpdateSettings(data);
  spectrum.PreProcess(data);
  const bool offscreen = blur.StartDrawing();
  if (offscreen) DrawOffscreen(*data);
  StartWindow();
  if (offscreen) {
    blur.BindTexture();
    DrawImage(1.0F, 1.0F);
  }
  if (data->settings.sharpOverlay != 0) spectrum.Render();
  if (!offscreen) {
    DrawLinesDirectly();
  } else if (data->settings.glow != 0) {
    blur.DrawBlur();
  }
  logo.Render();
  DrawText(data);
  display.EndRendering();
  ReportFrameErrors();
  inFrame = 0;
}

std::int32_t Renderer::EnterNewFrame(VisualPluginData* data) {
  const AbsoluteTime now = UpTime();
  const float interval = IntervalSeconds(AbsoluteDeltaToDuration(now, lastFrameTime));
  lastFrameTime = now;
  // Two frames at one moment say nothing about the rate.
  if (interval > 0.0F) fps = static_cast<float>(fps * 0.95 + 0.05 / interval);
  frameScale = interval * 20.0F;

  const std::int32_t elapsed = TruncateToInt32(interval * 1000.0F);
  CountDown(data->trackTextTime, elapsed);
  CountDown(data->streamTextTime, elapsed);
  return 1;
}

void Renderer::DrawOffscreen(const VisualPluginData& data) {
  blur.BindTexture();
  glEnable(GL_TEXTURE_2D);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  glEnable(GL_BLEND);
  glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  glLoadIdentity();
  DrawZoomedImage(data);
  spectrum.Render();
  blur.EndDrawing();
  glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR);
  if (data.settings.glow != 0) blur.GenerateBlur();
}

void Renderer::DrawZoomedImage(const VisualPluginData& data) const {
  const Settings& settings = data.settings;
  const float growth = ZoomScale(data) - 1.0F;
  const float keep = 1.0F - settings.fade;
  // The image is not turned: the angle divides the zoom between the axes.
  const float angle =
      settings.verticalLayout != 0 ? 90.0F - settings.zoomRotation : settings.zoomRotation;
  const float sn = std::sin(static_cast<float>(angle * kDegree));
  const float cs = std::cos(static_cast<float>(angle * kDegree));

  if (settings.smoothing == 0) {
    const float d = growth * frameScale;
    glColor4f(1.0F, 1.0F, 1.0F, keep);
    DrawImage(1.0F + d * sn, 1.0F + d * cs);
    return;
  }
  // Copies between no zoom and the whole, which add up to the brightness of one.
  const int copies =
      std::clamp(TruncateToInt32(std::fabs(growth) * 40.0), kFewestCopies, kMostCopies);
  const auto n = static_cast<float>(copies);
  glColor4f(1.0F, 1.0F, 1.0F, keep / n);
  for (int i = 1; i <= copies; ++i) {
    const float d = growth * static_cast<float>(i) * frameScale / n;
    DrawImage(1.0F + d * sn, 1.0F + d * cs);
  }
}

void Renderer::StartWindow() {
  display.StartRendering();
  glViewport(0, 0, display.Width(), display.Height());
  glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  glEnable(GL_TEXTURE_2D);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
}

void Renderer::DrawLinesDirectly() {
  for (int i = 0; i < kDirectDrawings; ++i)
    spectrum.Render();
}

void Renderer::ReportFrameErrors() {
  if (const GLenum error = aglGetError(); error != AGL_NO_ERROR)
    aglReportError("OpenGL rendering problem", error);
  glCheckError();
}

} // namespace halvenor
