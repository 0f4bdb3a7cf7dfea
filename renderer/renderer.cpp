#include "renderer/renderer.h"

#include "gl/diagnostics.h"
#include "renderer/font_system.h"
#include "scene/numeric.h"

#include <GL/gl.h>

namespace halvenor {
namespace {

constexpr float kFirstFps = 20.0F;
constexpr float kFirstFrameScale = 1.0F;

// Without offscreen buffers the lines are all there is: drawn over themselves, they are bright
// enough.
constexpr int kDirectDrawings = 3;

float IntervalSeconds(Duration delta) {
  return static_cast<float>(delta >= 0 ? delta / 1000.0 : delta / -1000000.0);
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
  FontSystem::Open(&display);
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
  FontSystem::Close();
  display.Close();
}

std::int32_t Renderer::Resize(GrafPtr port, const Rect* rect) {
  return display.Resize(port, rect);
}

void Renderer::Render(VisualPluginData* data) {
  if (isOpen == 0 || data == nullptr) return;
  if (EnterNewFrame(data) == 0) return;
  inFrame = 1;
  spectrum.PreProcess(data);
  StartWindow();
  if (data->settings.sharpOverlay != 0) spectrum.Render();
  DrawLinesDirectly();
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
