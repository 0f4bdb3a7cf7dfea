#include "platform/driver/render_target.h"

#include "platform/agl.h"
#include "platform/driver/driver_library.h"
#include "platform/extension_list.h"

#include <GL/glext.h>

#include <algorithm>
#include <cstdlib>

namespace halvenor::agl {
namespace {

// What is drawn here is read back, faded and drawn again, many times over. In 8 bits that would
// come to rest at a gray that never fades; the alpha of these pictures needs no more than two
// values.
constexpr GLint kTextureFormats[] = {GL_RGB10_A2, GL_RGBA8};

bool IsWithinLimits(Size size) {
  GLint side = 0;
  GLint viewport[2] = {0, 0};
  glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &side);
  glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
  return size.width <= std::min(side, viewport[0]) && size.height <= std::min(side, viewport[1]);
}

bool IsComplete() {
  return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

GLuint AddBuffer(GLenum attachment, GLenum format, Size size) {
  GLuint buffer = 0;
  glGenRenderbuffers(1, &buffer);
  glBindRenderbuffer(GL_RENDERBUFFER, buffer);
  glRenderbufferStorage(GL_RENDERBUFFER, format, size.width, size.height);
  glBindRenderbuffer(GL_RENDERBUFFER, 0);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer);
  return buffer;
}

void Clear() {
  glPushAttrib(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_SCISSOR_BIT);
  glDisable(GL_SCISSOR_TEST);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glDepthMask(GL_TRUE);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClearDepth(1.0);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glPopAttrib();
}

void DropErrors() {
  while (glGetError() != GL_NO_ERROR) {
  }
}

void TurnUpsideDown(Size size, const Pixels& pixels) {
  const auto bytes = static_cast<std::ptrdiff_t>(size.width) * 4;
  for (GLsizei above = 0, below = size.height - 1; above < below; ++above, --below) {
    std::uint8_t* const row = pixels.topRow + pixels.stride * above;
    std::swap_ranges(row, row + bytes, pixels.topRow + pixels.stride * below);
  }
}

} // namespace

RenderTarget::~RenderTarget() {
  if (frameBuffer_ == 0) return;
  glDeleteFramebuffers(1, &frameBuffer_);
  glDeleteRenderbuffers(1, &color_);
  glDeleteRenderbuffers(1, &depth_);
}

std::unique_ptr<RenderTarget> RenderTarget::Make(Size size, bool depth) {
  if (size.IsEmpty() || !IsWithinLimits(size)) return nullptr;
  GLint before = 0;
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &before);
  std::unique_ptr<RenderTarget> target(new RenderTarget(size));
  glGenFramebuffers(1, &target->frameBuffer_);
  target->Bind();
  target->color_ = AddBuffer(GL_COLOR_ATTACHMENT0, GL_RGBA8, size);
  if (depth) target->depth_ = AddBuffer(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, size);
  if (IsComplete()) {
    Clear();
    return target;
  }
  glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(before));
  target.reset();
  DropErrors();
  return nullptr;
}

GLenum RenderTarget::ShowInBoundTexture() {
  GLint texture = 0;
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
  if (texture == 0) return AGL_BAD_VALUE;
  const Size size = GetSize();
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
  Bind();
  bool isShown = false;
  for (const GLint format : kTextureFormats) {
    glTexImage2D(GL_TEXTURE_2D, 0, format, size.width, size.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 nullptr);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                           static_cast<GLuint>(texture), 0);
    isShown = IsComplete();
    if (isShown) break;
    DropErrors();
  }
  glDeleteRenderbuffers(1, &color_);
  color_ = isShown ? 0 : AddBuffer(GL_COLOR_ATTACHMENT0, GL_RGBA8, size);
  return isShown ? AGL_NO_ERROR : AGL_NO_BUFFER;
}

void RenderTarget::Read(GLint x, GLint y, Size size, const Pixels& pixels) {
  const bool isRgba = pixels.order == Pixels::Order::Rgba;
  const GLenum format = isRgba ? GL_RGBA : GL_BGRA;
  const GLenum type = isRgba ? GL_UNSIGNED_BYTE : GL_UNSIGNED_INT_8_8_8_8_REV;
  const bool topFirst = pixels.stride > 0;
  const bool inverts =
      topFirst && HasExtension(reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS)),
                               "GL_MESA_pack_invert");
  glBindFramebuffer(GL_READ_FRAMEBUFFER, frameBuffer_);
  glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glPixelStorei(GL_PACK_ROW_LENGTH, static_cast<GLint>(std::abs(pixels.stride) / 4));
  glPixelStorei(GL_PACK_SKIP_ROWS, 0);
  glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_PACK_SWAP_BYTES, GL_FALSE);
  if (inverts) glPixelStorei(GL_PACK_INVERT_MESA, GL_TRUE);
  std::uint8_t* const first =
      topFirst ? pixels.topRow : pixels.topRow + pixels.stride * (size.height - 1);
  glReadPixels(x, y, size.width, size.height, format, type, first);
  glPopClientAttrib();
  // A call for each row would wait for the driver as often.
  if (topFirst && !inverts) TurnUpsideDown(size, pixels);
}

void RenderTarget::Bind() const {
  glBindFramebuffer(GL_FRAMEBUFFER, frameBuffer_);
}

} // namespace halvenor::agl
