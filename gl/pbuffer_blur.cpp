#include "gl/pbuffer_blur.h"

#include "gl/blur_arb.h"
#include "gl/diagnostics.h"
#include "gl/textured_quad.h"
#include "gl_calls/gl.h"

namespace halvenor {
namespace {

constexpr float kPassOffset = 0.006F;     // in texture coordinates: about 3 texels
constexpr float kCopySpread = 0.008F;     // in viewport units: about 2 pixels
constexpr float kCompositeSpread = 0.01F; // in viewport units

} // namespace

void PBufferBlur::Create(AGLContext newContext) {
  Destroy();
  PBuffer::Create(newContext);
  if (context == nullptr) return;
  blurShaders.reset();
  if (BlurARB::Supported()) {
    DebugLog(" Halvenor : ARB shader support found!");
    blurShaders = std::make_unique<BlurARB>();
  }
  for (Buffer& buffer : blurBuffers) {
    if (!MakeBuffer(buffer)) {
      aglReportError("pBufferBlur problems");
      for (Buffer& made : blurBuffers)
        ReleaseBuffer(made);
      return;
    }
    DrawInto(buffer);
    glClear(GL_COLOR_BUFFER_BIT);
    aglSwapBuffers(context);
  }
}

void PBufferBlur::Destroy() {
  if (context == nullptr) return;
  PBuffer::Destroy();
  for (Buffer& buffer : blurBuffers)
    ReleaseBuffer(buffer);
  // Programs live on the context, which is about to go.
  blurShaders.reset();
  ReportIfPending("PBuffer destruction problems");
}

bool PBufferBlur::CanBlur() const {
  return context != nullptr && blurBuffers[0].pbuffer != nullptr;
}

void PBufferBlur::GenerateBlur() {
  if (!CanBlur()) return;
  glEnable(GL_TEXTURE_2D);
  if (blurShaders) blurShaders->StartBlurGeneration();
  glViewport(0, 0, width, height);
  glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
  glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
  ReportIfPending("pBuffer start drawing problems");
  if (blurShaders) {
    BlurWithPrograms();
    blurShaders->EndBlurGeneration();
  } else {
    BlurWithCopies();
  }
  glEnable(GL_BLEND);
}

void PBufferBlur::BlurWithPrograms() {
  const struct {
    const Buffer& target;
    GLuint source;
    float x;
    float y;
  } passes[] = {
      {blurBuffers[1], CurrentTexture(), kPassOffset, 0.0F},
      {blurBuffers[0], blurBuffers[1].texture, 0.0F, kPassOffset},
      {blurBuffers[1], blurBuffers[0].texture, kPassOffset, 0.0F},
      {blurBuffers[0], blurBuffers[1].texture, 0.0F, kPassOffset},
  };
  glDisable(GL_BLEND);
  for (const auto& pass : passes) {
    DrawInto(pass.target);
    glClear(GL_COLOR_BUFFER_BIT);
    blurShaders->BindTexture(pass.source);
    blurShaders->SetOffset(pass.x, pass.y);
    DrawTexture(0.0F, 0.0F);
    aglSwapBuffers(context);
  }
}

void PBufferBlur::BlurWithCopies() {
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE);
  DrawInto(blurBuffers[0]);
  glClear(GL_COLOR_BUFFER_BIT);
  BindTexture();
  glColor4f(1.0F, 1.0F, 1.0F, 0.5F);
  DrawCopies(kCopySpread);
  aglSwapBuffers(context);
}

void PBufferBlur::DrawCopies(float spread) const {
  DrawTexture(0.0F, 0.0F);
  DrawTexture(-spread, -spread);
  DrawTexture(spread, -spread);
  DrawTexture(-spread, spread);
  DrawTexture(spread, spread);
}

void PBufferBlur::DrawBlur() {
  if (!CanBlur()) return;
  glEnable(GL_TEXTURE_2D);
  glEnable(GL_BLEND);
  if (blurShaders) {
    blurShaders->StartBlurDrawing();
    glColor4f(0.7F, 0.7F, 0.7F, 0.6F);
    blurShaders->BindTexture(blurBuffers[0].texture);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_COLOR);
    DrawTexture(0.0F, 0.0F);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
    DrawTexture(0.0F, 0.0F);
    blurShaders->EndBlurDrawing();
  } else {
    glColor4f(0.5F, 0.5F, 0.5F, 0.2F);
    glBindTexture(GL_TEXTURE_2D, blurBuffers[0].texture);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    DrawCopies(kCompositeSpread);
  }
  glEnable(GL_BLEND);
}

void PBufferBlur::DrawTexture(float dx, float dy) const {
  if (context != nullptr) DrawTexturedQuad(dx - 1.0F, dy - 1.0F, dx + 1.0F, dy + 1.0F);
}

} // namespace halvenor
