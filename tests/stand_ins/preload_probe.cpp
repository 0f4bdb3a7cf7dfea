// Uses the platform library, or what was loaded ahead of it. With an argument it forgets to make
// its context current.
#include "platform/agl.h"

#include <cstdio>

int main(int argc, char** /*argv*/) {
  const GLint attributes[] = {AGL_RGBA, AGL_NONE};
  const AGLPixelFormat format = aglChoosePixelFormat(nullptr, 0, attributes);
  const AGLContext context = aglCreateContext(format, nullptr);
  if (argc == 1) aglSetCurrentContext(context);
  std::printf("list %u\n", glGenLists(1));
  aglSetCurrentContext(nullptr);
  aglDestroyContext(context);
  aglDestroyPixelFormat(format);
}
