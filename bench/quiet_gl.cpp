// OpenGL, the context layer and bundles without any effect, so that what is left of a frame's time
// is the plug-in's own. In a shared library of its own, for calls to cost what they cost a plug-in.
#include "bench/gl_definitions.h"
#include "platform/agl.h"
#include "platform/core_foundation.h"

#include <cstdio>
#include <type_traits>

// Whatever is made is there, whatever may fail succeeds, the two extensions of the blur by programs
// too; but no bundle has anything to load.
#define HALVENOR_QUIET_FUNCTIONS(X)                                                                \
  X(3, aglChoosePixelFormat, "***")                                                                \
  X(1, aglDestroyPixelFormat, "*")                                                                 \
  X(2, aglCreateContext, "**")                                                                     \
  X(1, aglDestroyContext, "*")                                                                     \
  X(3, aglSetInteger, "*e*")                                                                       \
  X(2, aglEnable, "*e")                                                                            \
  X(2, aglSetDrawable, "**")                                                                       \
  X(1, aglSetCurrentContext, "*")                                                                  \
  X(1, aglUpdateContext, "*")                                                                      \
  X(1, aglSwapBuffers, "*")                                                                        \
  X(1, aglDestroyPBuffer, "*")                                                                     \
  X(3, aglTexImagePBuffer, "**e")                                                                  \
  X(5, aglSetPBuffer, "**nnn")                                                                     \
  X(1, aglGetVirtualScreen, "*")                                                                   \
  X(0, aglGetError, "")                                                                            \
  X(1, aglErrorString, "e")                                                                        \
  X(7, aglUseFont, "*nnnnnn")                                                                      \
  X(1, CFBundleGetBundleWithIdentifier, "*")                                                       \
  X(1, CFBundleCopyResourcesDirectoryURL, "*")                                                     \
  X(1, CFBundleCopyPrivateFrameworksURL, "*")                                                      \
  X(4, CFURLCreateCopyAppendingPathComponent, "***n")                                              \
  X(2, CFBundleCreate, "**")                                                                       \
  X(1, CFBundleLoadExecutable, "*")                                                                \
  X(2, CFBundleGetFunctionPointerForName, "**")                                                    \
  X(1, CFRelease, "*")

namespace halvenor::bench::quiet {
namespace {

#define HALVENOR_QUIET_ENUMERATOR(arity, name, kinds) name,
enum class Function {
  HALVENOR_BENCH_FUNCTIONS(HALVENOR_QUIET_ENUMERATOR)
      HALVENOR_QUIET_FUNCTIONS(HALVENOR_QUIET_ENUMERATOR)
};

template <Function F, class Result, class... Arguments>
Result Serve(const char* /*kinds*/, Arguments...) {
  static char something[1] = "";
  if constexpr (std::is_pointer_v<Result>) return reinterpret_cast<Result>(something);
  if constexpr (std::is_same_v<Result, GLboolean>) return GL_TRUE;
  return Result();
}

} // namespace
} // namespace halvenor::bench::quiet

#define HALVENOR_GL_HERE halvenor::bench::quiet
HALVENOR_BENCH_FUNCTIONS(HALVENOR_GL_DEFINE)
HALVENOR_QUIET_FUNCTIONS(HALVENOR_GL_DEFINE)

struct HalvenorPBuffer {};
GLboolean aglCreatePBuffer(GLint, GLint, GLenum, GLenum, GLint, AGLPbuffer* pbuffer) {
  static HalvenorPBuffer buffer;
  *pbuffer = &buffer;
  return GL_TRUE;
}
bool CFURLGetFileSystemRepresentation(CFURLRef, bool, uint8_t* buffer, ptrdiff_t size) {
  return std::snprintf(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(size),
                       HALVENOR_RESOURCES) < size;
}
void GetFNum(const unsigned char*, int16_t* family) {
  *family = 1;
}
