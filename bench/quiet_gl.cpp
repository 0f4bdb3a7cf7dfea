// OpenGL, the context layer and bundles without any effect, so that what is left of a frame's time
// is the plug-in's own. In a shared library of its own, for calls to cost what they cost a plug-in.
#include "bench/gl_definitions.h"
#include "platform/agl.h"
#include "platform/core_foundation.h"

#include <cstdio>
#include <type_traits>

namespace halvenor::bench {
namespace {

template <Function F, class Result, class... Arguments>
Result Serve(Arguments...) {
  // The blur by programs is the one that drivers have.
  if constexpr (F == Function::gluCheckExtension) return GL_TRUE;
  if constexpr (std::is_same_v<Result, const GLubyte*>) return reinterpret_cast<Result>("");
  return Result();
}

} // namespace
} // namespace halvenor::bench

HALVENOR_BENCH_FUNCTIONS(HALVENOR_DEFINE_GL)

struct HalvenorPixelFormat {};
struct HalvenorContext {};
struct HalvenorPBuffer {};

AGLPixelFormat aglChoosePixelFormat(const void*, GLint, const GLint*) {
  static HalvenorPixelFormat format;
  return &format;
}
void aglDestroyPixelFormat(AGLPixelFormat) {}
AGLContext aglCreateContext(AGLPixelFormat, AGLContext) {
  static HalvenorContext context;
  return &context;
}
GLboolean aglDestroyContext(AGLContext) {
  return GL_TRUE;
}
GLboolean aglSetInteger(AGLContext, GLenum, const GLint*) {
  return GL_TRUE;
}
GLboolean aglEnable(AGLContext, GLenum) {
  return GL_TRUE;
}
GLboolean aglSetDrawable(AGLContext, GrafPtr) {
  return GL_TRUE;
}
GLboolean aglSetCurrentContext(AGLContext) {
  return GL_TRUE;
}
GLboolean aglUpdateContext(AGLContext) {
  return GL_TRUE;
}
void aglSwapBuffers(AGLContext) {}
GLboolean aglCreatePBuffer(GLint, GLint, GLenum, GLenum, GLint, AGLPbuffer* pbuffer) {
  static HalvenorPBuffer buffer;
  *pbuffer = &buffer;
  return GL_TRUE;
}
GLboolean aglDestroyPBuffer(AGLPbuffer) {
  return GL_TRUE;
}
GLboolean aglTexImagePBuffer(AGLContext, AGLPbuffer, GLint) {
  return GL_TRUE;
}
GLboolean aglSetPBuffer(AGLContext, AGLPbuffer, GLint, GLint, GLint) {
  return GL_TRUE;
}
GLint aglGetVirtualScreen(AGLContext) {
  return 0;
}
GLenum aglGetError() {
  return AGL_NO_ERROR;
}
const GLubyte* aglErrorString(GLenum) {
  return reinterpret_cast<const GLubyte*>("");
}
CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef) {
  static char bundle;
  return reinterpret_cast<CFBundleRef>(&bundle);
}
CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle) {
  return reinterpret_cast<CFURLRef>(bundle);
}
bool CFURLGetFileSystemRepresentation(CFURLRef, bool, uint8_t* buffer, ptrdiff_t size) {
  return std::snprintf(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(size),
                       HALVENOR_RESOURCES) < size;
}
CFURLRef CFBundleCopyPrivateFrameworksURL(CFBundleRef) {
  return nullptr;
}
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef, CFURLRef, CFStringRef, bool) {
  return nullptr;
}
CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef) {
  return nullptr;
}
bool CFBundleLoadExecutable(CFBundleRef) {
  return false;
}
void* CFBundleGetFunctionPointerForName(CFBundleRef, CFStringRef) {
  return nullptr;
}
void CFRelease(CFTypeRef) {}
void GetFNum(const unsigned char*, int16_t* family) {
  *family = 1;
}
GLboolean aglUseFont(AGLContext, GLint, GLint, GLint, GLint, GLint, GLint) {
  return GL_TRUE;
}
