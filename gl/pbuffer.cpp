#include "gl/pbuffer.h"

#include "gl/diagnostics.h"
#include "gl_calls/gl.h"

namespace halvenor {

bool PBuffer::MakeBuffer(Buffer& buffer) const {
  if (aglCreatePBuffer(width, height, GL_TEXTURE_2D, GL_RGBA, 0, &buffer.pbuffer) == GL_FALSE) {
    buffer.pbuffer = nullptr;
    return false;
  }
  glGenTextures(1, &buffer.texture);
  glBindTexture(GL_TEXTURE_2D, buffer.texture);
  aglTexImagePBuffer(context, buffer.pbuffer, GL_FRONT);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  return true;
}

void PBuffer::ReleaseBuffer(Buffer& buffer) {
  if (buffer.pbuffer != nullptr) aglDestroyPBuffer(buffer.pbuffer);
  if (buffer.texture != 0) glDeleteTextures(1, &buffer.texture);
  buffer = Buffer{};
}

void PBuffer::DrawInto(const Buffer& buffer) const {
  aglSetPBuffer(context, buffer.pbuffer, 0, 0, aglGetVirtualScreen(context));
}

void PBuffer::ReportIfPending(const char* message) {
  if (const GLenum error = aglGetError(); error != AGL_NO_ERROR) aglReportError(message, error);
}

void PBuffer::Create(AGLContext newContext) {
  PBuffer::Destroy();
  context = newContext;
  for (Buffer& buffer : buffers) {
    if (!MakeBuffer(buffer)) {
      aglReportError("pBuffers not supported");
      for (Buffer& made : buffers)
        ReleaseBuffer(made);
      context = nullptr;
      return;
    }
    DrawInto(buffer);
    glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    aglSwapBuffers(context);
  }
  glEnable(GL_TEXTURE_2D);
  glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
  glCheckError();
  ReportIfPending("PBuffer creation problems");
}

void PBuffer::Destroy() {
  if (context == nullptr) return;
  for (Buffer& buffer : buffers)
    ReleaseBuffer(buffer);
  ReportIfPending("PBuffer destruction problems");
  current = 0;
  context = nullptr;
}

bool PBuffer::StartDrawing() {
  if (context == nullptr) return false;
  DrawInto(buffers[current]);
  glViewport(0, 0, width, height);
  ReportIfPending("pBuffer start drawing problems");
  return true;
}

void PBuffer::EndDrawing() {
  if (context == nullptr) return;
  aglSwapBuffers(context);
  current = 1 - current;
  ReportIfPending("pBuffer end drawing problems");
}

void PBuffer::BindTexture() const {
  if (context != nullptr) glBindTexture(GL_TEXTURE_2D, CurrentTexture());
}

GLuint PBuffer::CurrentTexture() const {
  return context != nullptr ? buffers[1 - current].texture : 0;
}

} // namespace halvenor
