// The functions of agl.h that concern offscreen buffers.
#include "platform/agl.h"
#include "platform/agl_context.h"
#include "platform/agl_errors.h"

#include <memory>
#include <new>
#include <utility>

using halvenor::agl::Buffer;
using halvenor::agl::Report;

struct HalvenorPBuffer {
  HalvenorContext* context; ///< on which it was made
  std::unique_ptr<Buffer> buffer;
};

namespace {

/// What keeps `pbuffer` from being used on `context`, where it has to have been made.
GLenum FaultOf(AGLContext context, AGLPbuffer pbuffer) {
  if (context == nullptr) return AGL_BAD_CONTEXT;
  if (pbuffer == nullptr) return AGL_BAD_VALUE;
  return pbuffer->context == context ? AGL_NO_ERROR : AGL_BAD_CONTEXT;
}

} // namespace

GLboolean aglCreatePBuffer(GLint width, GLint height, GLenum target, GLenum internalFormat,
                           GLint maxLevel, AGLPbuffer* pbuffer) {
  if (pbuffer == nullptr) return Report(AGL_BAD_VALUE);
  *pbuffer = nullptr;
  HalvenorContext* const context = HalvenorContext::Current();
  if (context == nullptr) return Report(AGL_BAD_CONTEXT);
  if (target != GL_TEXTURE_2D || internalFormat != GL_RGBA) return Report(AGL_BAD_ENUM);
  if (width < 1 || height < 1 || maxLevel != 0) return Report(AGL_BAD_VALUE);
  const GLint most = context->Drawer().MostTextureSize();
  if (width > most || height > most) return Report(AGL_NO_BUFFER);
  // A driver's first color buffer is replaced by the texture; it shows that the driver can do it.
  std::unique_ptr<Buffer> made = context->Drawer().MakeBuffer({width, height}, false);
  context->Rebind();
  if (made == nullptr) return Report(AGL_NO_BUFFER);
  *pbuffer = new (std::nothrow) HalvenorPBuffer{context, std::move(made)};
  return Report(*pbuffer != nullptr ? AGL_NO_ERROR : AGL_NO_BUFFER);
}

GLboolean aglDestroyPBuffer(AGLPbuffer pbuffer) {
  if (const GLenum fault = FaultOf(HalvenorContext::Current(), pbuffer); fault != AGL_NO_ERROR)
    return Report(fault);
  pbuffer->context->Forget(*pbuffer->buffer);
  delete pbuffer;
  return GL_TRUE;
}

GLboolean aglTexImagePBuffer(AGLContext context, AGLPbuffer pbuffer, GLint source) {
  if (const GLenum fault = FaultOf(context, pbuffer); fault != AGL_NO_ERROR) return Report(fault);
  if (HalvenorContext::Current() != context) return Report(AGL_BAD_CONTEXT);
  if (source != GL_FRONT) return Report(AGL_BAD_ENUM);
  const GLenum error = pbuffer->buffer->ShowInBoundTexture();
  context->Rebind();
  return Report(error);
}

GLboolean aglSetPBuffer(AGLContext context, AGLPbuffer pbuffer, GLint face, GLint level,
                        GLint screen) {
  if (const GLenum fault = FaultOf(context, pbuffer); fault != AGL_NO_ERROR) return Report(fault);
  if (face != 0 || level != 0 || screen != 0) return Report(AGL_BAD_VALUE);
  return Report(context->Attach(*pbuffer->buffer));
}

GLint aglGetVirtualScreen(AGLContext context) {
  Report(context != nullptr ? AGL_NO_ERROR : AGL_BAD_CONTEXT);
  return 0;
}
