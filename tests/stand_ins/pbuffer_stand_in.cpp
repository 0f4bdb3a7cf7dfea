// The offscreen buffers of the context layer's stand-in.
#include "tests/stand_ins/agl_objects.h"
#include "tests/stand_ins/agl_stand_in.h"

namespace halvenor::stand_ins {
namespace {

constexpr GLint kLargestSide = 16384;

// What keeps `pbuffer` from being used on `context`.
GLenum FaultOf(Function function, AGLContext context, AGLPbuffer pbuffer) {
  if (context == nullptr) return AGL_BAD_CONTEXT;
  if (pbuffer == nullptr) return AGL_BAD_VALUE;
  if (pbuffer->destroyed) {
    ReportMisuseOf(function, Show(pbuffer).first, "was destroyed before");
    return AGL_BAD_VALUE;
  }
  return pbuffer->context == context ? AGL_NO_ERROR : AGL_BAD_CONTEXT;
}

} // namespace

std::int64_t LivePBuffers() {
  return pbuffers.Live();
}

GLuint TargetTexture() {
  const AGLContext context = CurrentContext();
  return context == nullptr || context->pbuffer == nullptr ? 0 : context->pbuffer->texture;
}

bool TargetIsDestroyed() {
  return CurrentContext() != nullptr && CurrentContext()->target_destroyed;
}

} // namespace halvenor::stand_ins

using namespace halvenor::stand_ins;

GLboolean aglCreatePBuffer(GLint width, GLint height, GLenum target, GLenum internalFormat,
                           GLint maxLevel, AGLPbuffer* pbuffer) {
  const unsigned fault =
      Begin(Function::aglCreatePBuffer, width, height, target, internalFormat, maxLevel);
  if (pbuffer == nullptr) return Refuse(AGL_BAD_VALUE);
  *pbuffer = nullptr;
  if (fault != 0) return Refuse(fault);
  const AGLContext context = CurrentContext();
  if (context == nullptr) return Refuse(AGL_BAD_CONTEXT);
  if (target != GL_TEXTURE_2D || internalFormat != GL_RGBA) return Refuse(AGL_BAD_ENUM);
  if (width < 1 || height < 1 || maxLevel != 0) return Refuse(AGL_BAD_VALUE);
  if (width > kLargestSide || height > kLargestSide) return Refuse(AGL_NO_BUFFER);
  *pbuffer = pbuffers.Make();
  (*pbuffer)->context = context;
  context->live_pbuffers.Add(1);
  return GL_TRUE;
}

GLboolean aglDestroyPBuffer(AGLPbuffer pbuffer) {
  GLenum error = Begin(Function::aglDestroyPBuffer, pbuffer);
  const AGLContext context = CurrentContext();
  if (error == 0) error = FaultOf(Function::aglDestroyPBuffer, context, pbuffer);
  if (error != AGL_NO_ERROR) return Refuse(error);
  if (context->pbuffer == pbuffer) {
    context->pbuffer = nullptr;
    context->target_destroyed = true;
  }
  pbuffers.End(pbuffer);
  context->live_pbuffers.Add(-1);
  return GL_TRUE;
}

GLboolean aglTexImagePBuffer(AGLContext context, AGLPbuffer pbuffer, GLint source) {
  if (!BeginWith(Function::aglTexImagePBuffer, context, pbuffer, static_cast<GLenum>(source)))
    return GL_FALSE;
  const GLenum error = FaultOf(Function::aglTexImagePBuffer, context, pbuffer);
  if (error != AGL_NO_ERROR) return Refuse(error);
  if (CurrentContext() != context) return Refuse(AGL_BAD_CONTEXT);
  if (source != GL_FRONT) return Refuse(AGL_BAD_ENUM);
  if (BoundTexture() == 0) return Refuse(AGL_BAD_VALUE);
  pbuffer->texture = BoundTexture();
  return GL_TRUE;
}

GLboolean aglSetPBuffer(AGLContext context, AGLPbuffer pbuffer, GLint face, GLint level,
                        GLint screen) {
  if (!BeginWith(Function::aglSetPBuffer, context, pbuffer, face, level, screen)) return GL_FALSE;
  const GLenum error = FaultOf(Function::aglSetPBuffer, context, pbuffer);
  if (error != AGL_NO_ERROR) return Refuse(error);
  if (face != 0 || level != 0 || screen != 0) return Refuse(AGL_BAD_VALUE);
  if (pbuffer->texture != 0 && !IsLiveTexture(pbuffer->texture))
    ReportMisuseOf(Function::aglSetPBuffer, Show(pbuffer).first, "has lost its texture");
  if (CurrentContext() != context) Switch(Function::aglSetPBuffer, context);
  context->port = nullptr;
  context->pbuffer = pbuffer;
  context->target_destroyed = false;
  return GL_TRUE;
}

GLint aglGetVirtualScreen(AGLContext context) {
  (void)BeginWith(Function::aglGetVirtualScreen, context);
  return 0;
}
