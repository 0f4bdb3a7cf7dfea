#define GL_GLEXT_PROTOTYPES
#include "platform/render_target.h"

#include <GL/glext.h>

#include <algorithm>
#include <utility>

namespace halvenor::agl {
namespace {

// What is drawn here is read back, faded and drawn again, many times over. In 8 bits that would
// come to rest at a grey that never fades; the alpha of these pictures needs no more than two
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

} // namespace

RenderTarget::~RenderTarget() {
  if (frameBuffer_ == 0) return;
  glDeleteFramebuffers(1, &frameBuffer_);
  glDeleteRenderbuffers(1, &color_);
  glDeleteRenderbuffers(1, &depth_);
}

RenderTarget::RenderTarget(RenderTarget&& other) noexcept
    : size_(other.size_), frameBuffer_(std::exchange(other.frameBuffer_, 0)),
      color_(std::exchange(other.color_, 0)), depth_(std::exchange(other.depth_, 0)) {}

RenderTarget& RenderTarget::operator=(RenderTarget&& other) noexcept {
  std::swap(size_, other.size_);
  std::swap(frameBuffer_, other.frameBuffer_);
  std::swap(color_, other.color_);
  std::swap(depth_, other.depth_);
  return *this;
}

RenderTarget RenderTarget::Make(Size size, bool depth) {
  RenderTarget target;
  if (size.IsEmpty() || !IsWithinLimits(size)) return target;
  GLint before = 0;
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &before);
  target.size_ = size;
  glGenFramebuffers(1, &target.frameBuffer_);
  target.Bind();
  target.color_ = AddBuffer(GL_COLOR_ATTACHMENT0, GL_RGBA8, size);
  if (depth) target.depth_ = AddBuffer(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, size);
  if (IsComplete()) {
    Clear();
    return target;
  }
  glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(before));
  target = RenderTarget();
  DropErrors();
  return target;
}

bool RenderTarget::ShowInBoundTexture() {
  GLint texture = 0;
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
  Bind();
  bool isShown = false;
  for (const GLint format : kTextureFormats) {
    glTexImage2D(GL_TEXTURE_2D, 0, format, size_.width, size_.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 nullptr);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                           static_cast<GLuint>(texture), 0);
    isShown = IsComplete();
    if (isShown) break;
    DropErrors();
  }
  glDeleteRenderbuffers(1, &color_);
  color_ = isShown ? 0 : AddBuffer(GL_COLOR_ATTACHMENT0, GL_RGBA8, size_);
  return isShown;
}

void RenderTarget::Bind() const {
  glBindFramebuffer(GL_FRAMEBUFFER, frameBuffer_);
}

} // namespace halvenor::agl
