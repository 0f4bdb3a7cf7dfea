#include "scene/logo_overlay.h"

#include "gl/textured_quad.h"
#include "gl_calls/gl.h"
#include "scene/interval.h"

namespace halvenor {
namespace {

constexpr float kShownSeconds = 2.0F;
constexpr float kStillSeconds = 1.6F;
constexpr float kGrowth = 7.0F;
constexpr float kFading = 2.5F; // alpha a second
constexpr float kHalfWidth = 0.4F;
constexpr float kHalfHeight = 0.3F;

} // namespace

LogoOverlay::~LogoOverlay() {
  Close();
}

void LogoOverlay::Open(Display* newDisplay) {
  static bool firstTime = true;
  if (visible == 0) return;
  display = newDisplay;
  if (firstTime) startTime = UpTime();
  firstTime = false;
  LoadTGA(image, "Halvenor.tga");
  CreateTexture(image, 1);
}

void LogoOverlay::Close() {
  DeleteTexture(image);
  DeleteBuffer(image);
}

void LogoOverlay::Render() {
  if (visible == 0) return;
  const float seconds = IntervalSeconds(AbsoluteDeltaToDuration(UpTime(), startTime));
  if (seconds >= kShownSeconds) {
    visible = 0;
    return;
  }
  // Without a texture the rectangle would be plain white; without a height it has no proportions.
  if (image.textureId == 0 || display->Width() <= 0 || display->Height() <= 0) return;
  Draw(seconds);
}

void LogoOverlay::Draw(float seconds) const {
  const float late = seconds > kStillSeconds ? seconds - kStillSeconds : 0.0F;
  const float grow = kGrowth * late * late;
  const float x = kHalfWidth + grow;
  const float y = kHalfHeight + grow;

  glPushMatrix();
  glScalef(1.0F / display->ScreenRatio(), 1.0F, 1.0F);
  glColor4f(1.0F, 1.0F, 1.0F, (kShownSeconds - seconds) * kFading);
  glBindTexture(GL_TEXTURE_2D, image.textureId);
  glEnable(GL_TEXTURE_2D);
  DrawTexturedQuad(-x, -y, x, y);
  glPopMatrix();
}

} // namespace halvenor
