// The offscreen buffers of the context layer's stand-in.
#include "tests/stand_ins/agl_objects.h"
#include "tests/stand_ins/agl_stand_in.h"

#include <memory>
#include <mutex>

using halvenor::stand_ins::Function;

struct HalvenorPBuffer {
  int number = 0;
  AGLContext context = nullptr;
  GLuint texture = 0;
  std::atomic<bool> destroyed{false};
};

namespace halvenor::stand_ins {
namespace {

constexpr GLint kLargestSide = 16384;

// As with contexts, all stay in memory until Reset.
struct PBuffers {
  std::mutex mutex;
  std::vector<std::unique_ptr<HalvenorPBuffer>> all;
};

PBuffers& ThePBuffers() {
  static PBuffers& pbuffers = *new PBuffers;
  return pbuffers;
}

std::atomic<std::int64_t> live_pbuffers{0};

void ReportPBufferMisuse(Function function, AGLPbuffer pbuffer, const char* what) {
  ReportMisuse(std::string(NameOf(function)) + ": pbuffer " + std::to_string(pbuffer->number) +
               " " + what);
}

// What keeps `pbuffer` from being used on `context`.
GLenum FaultOf(Function function, AGLContext context, AGLPbuffer pbuffer) {
  if (context == nullptr) return AGL_BAD_CONTEXT;
  if (pbuffer == nullptr) return AGL_BAD_VALUE;
  if (pbuffer->destroyed.load(std::memory_order_relaxed)) {
    ReportPBufferMisuse(function, pbuffer, "was destroyed before");
    return AGL_BAD_VALUE;
  }
  return pbuffer->context == context ? AGL_NO_ERROR : AGL_BAD_CONTEXT;
}

} // namespace

int NumberOf(AGLPbuffer pbuffer) {
  return pbuffer == nullptr ? 0 : pbuffer->number;
}

std::int64_t LivePBuffers() {
  return live_pbuffers.load(std::memory_order_relaxed);
}

GLuint TargetTexture() {
  const AGLContext context = CurrentContext();
  return context == nullptr || context->pbuffer == nullptr ? 0 : context->pbuffer->texture;
}

bool TargetIsDestroyed() {
  const AGLContext context = CurrentContext();
  return context != nullptr && context->target_destroyed;
}

void ResetPBuffers() {
  live_pbuffers = 0;
  PBuffers& pbuffers = ThePBuffers();
  const std::lock_guard lock(pbuffers.mutex);
  pbuffers.all.clear();
}

} // namespace halvenor::stand_ins

using namespace halvenor::stand_ins;

GLboolean aglCreatePBuffer(GLint width, GLint height, GLenum target, GLenum internalFormat,
                           GLint maxLevel, AGLPbuffer* pbuffer) {
  const unsigned fault = Enter(Function::aglCreatePBuffer);
  (Line(Function::aglCreatePBuffer) << width << height).Enumerant(target).Enumerant(internalFormat)
      << maxLevel;
  if (pbuffer == nullptr) return Refuse(AGL_BAD_VALUE);
  *pbuffer = nullptr;
  if (fault != 0) return Refuse(fault);
  const AGLContext context = CurrentContext();
  if (context == nullptr) return Refuse(AGL_BAD_CONTEXT);
  if (target != GL_TEXTURE_2D || internalFormat != GL_RGBA) return Refuse(AGL_BAD_ENUM);
  if (width < 1 || height < 1 || maxLevel != 0) return Refuse(AGL_BAD_VALUE);
  if (width > kLargestSide || height > kLargestSide) return Refuse(AGL_NO_BUFFER);
  PBuffers& pbuffers = ThePBuffers();
  const std::lock_guard lock(pbuffers.mutex);
  *pbuffer = pbuffers.all.emplace_back(std::make_unique<HalvenorPBuffer>()).get();
  (*pbuffer)->number = static_cast<int>(pbuffers.all.size());
  (*pbuffer)->context = context;
  context->live_pbuffers.fetch_add(1, std::memory_order_relaxed);
  live_pbuffers.fetch_add(1, std::memory_order_relaxed);
  return GL_TRUE;
}

GLboolean aglDestroyPBuffer(AGLPbuffer pbuffer) {
  const unsigned fault = Enter(Function::aglDestroyPBuffer);
  Line(Function::aglDestroyPBuffer) << pbuffer;
  if (fault != 0) return Refuse(fault);
  const AGLContext context = CurrentContext();
  const GLenum error = FaultOf(Function::aglDestroyPBuffer, context, pbuffer);
  if (error != AGL_NO_ERROR) return Refuse(error);
  if (context->pbuffer == pbuffer) {
    context->pbuffer = nullptr;
    context->target_destroyed = true;
  }
  pbuffer->destroyed.store(true, std::memory_order_relaxed);
  context->live_pbuffers.fetch_sub(1, std::memory_order_relaxed);
  live_pbuffers.fetch_sub(1, std::memory_order_relaxed);
  return GL_TRUE;
}

GLboolean aglTexImagePBuffer(AGLContext context, AGLPbuffer pbuffer, GLint source) {
  const unsigned fault = Enter(Function::aglTexImagePBuffer);
  (Line(Function::aglTexImagePBuffer) << context << pbuffer).Enumerant(static_cast<GLenum>(source));
  if (!MayGoOn(Function::aglTexImagePBuffer, context, fault)) return GL_FALSE;
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
  const unsigned fault = Enter(Function::aglSetPBuffer);
  Line(Function::aglSetPBuffer) << context << pbuffer << face << level << screen;
  if (!MayGoOn(Function::aglSetPBuffer, context, fault)) return GL_FALSE;
  const GLenum error = FaultOf(Function::aglSetPBuffer, context, pbuffer);
  if (error != AGL_NO_ERROR) return Refuse(error);
  if (face != 0 || level != 0 || screen != 0) return Refuse(AGL_BAD_VALUE);
  if (pbuffer->texture != 0 && !IsLiveTexture(pbuffer->texture)) {
    ReportPBufferMisuse(Function::aglSetPBuffer, pbuffer, "has lost its texture");
  }
  if (CurrentContext() != context) Switch(Function::aglSetPBuffer, context);
  context->port = nullptr;
  context->pbuffer = pbuffer;
  context->target_destroyed = false;
  return GL_TRUE;
}

GLint aglGetVirtualScreen(AGLContext context) {
  const unsigned fault = Enter(Function::aglGetVirtualScreen);
  Line(Function::aglGetVirtualScreen) << context;
  (void)MayGoOn(Function::aglGetVirtualScreen, context, fault);
  return 0;
}
