// OpenGL contexts, drawables and fonts under the names by which the plug-in knows them.
//
// Errors: a call that fails leaves an error pending for its thread and returns false or null where
// it has a result. The first pending error stays until `aglGetError` reads it.
//
// Threads: a context is current on one thread at a time. The caller serializes all use of a
// context, and lets go of it (`aglSetCurrentContext(NULL)`) before another thread uses it.
#pragma once

#include "platform/export.h"
#include "platform/ports.h"

#include <GL/gl.h>

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct HalvenorPixelFormat* AGLPixelFormat;
typedef struct HalvenorContext* AGLContext;
typedef struct HalvenorPBuffer* AGLPbuffer;

/// Pixel format attributes and context parameters.
enum {
  AGL_NONE = 0,
  AGL_RGBA = 4,
  AGL_DOUBLEBUFFER = 5,
  AGL_RED_SIZE = 8,
  AGL_ALPHA_SIZE = 11,
  AGL_DEPTH_SIZE = 12,
  AGL_NO_RECOVERY = 72,
  AGL_CLOSEST_POLICY = 74,
  AGL_BUFFER_RECT = 202,
  AGL_BUFFER_NAME = 231
};

/// Error codes.
enum {
  AGL_NO_ERROR = 0,
  AGL_BAD_ATTRIBUTE = 10000,
  AGL_BAD_PIXELFORMAT,
  AGL_BAD_CONTEXT,
  AGL_BAD_DRAWABLE,
  AGL_BAD_VALUE,
  AGL_BAD_ENUM,
  AGL_BAD_FONT,
  AGL_NO_DISPLAY, ///< no connection to the window system, or no usable EGL
  AGL_NO_OPENGL,  ///< no context of the compatibility profile could be made
  AGL_NO_BUFFER   ///< no memory or no support for the buffer asked for
};

/// A pixel format with the wanted attributes, a list of names (and values) closed by `AGL_NONE`.
/// `devices` and `deviceCount` are not looked at. Null with an unknown attribute. The caller owns
/// the result and releases it with `aglDestroyPixelFormat` (null allowed).
HALVENOR_PLATFORM AGLPixelFormat aglChoosePixelFormat(const void* devices, GLint deviceCount,
                                                      const GLint* attributes);
HALVENOR_PLATFORM void aglDestroyPixelFormat(AGLPixelFormat format);

/// A context for `format`; nothing of it is realized before it is first made current. `share` must
/// be null. The caller owns it and releases it with `aglDestroyContext`, on the thread where it is
/// current or on any thread when it is current nowhere; null is an error without effect.
HALVENOR_PLATFORM AGLContext aglCreateContext(AGLPixelFormat format, AGLContext share);
HALVENOR_PLATFORM GLboolean aglDestroyContext(AGLContext context);

/// `AGL_BUFFER_NAME` (one integer: contexts with one name share the buffers of a port) and
/// `AGL_BUFFER_RECT` (x, y, width, height in the port, origin bottom-left; used once enabled).
/// Takes effect with the next `aglUpdateContext` or `aglSetCurrentContext`.
HALVENOR_PLATFORM GLboolean aglSetInteger(AGLContext context, GLenum parameter,
                                          const GLint* values);
HALVENOR_PLATFORM GLboolean aglEnable(AGLContext context, GLenum parameter);

/// Directs drawing to `port`, or to nothing (null). Attaching the port again that was attached
/// last costs next to nothing: its buffers are kept until another port is attached, its size
/// changes or the context is destroyed.
HALVENOR_PLATFORM GLboolean aglSetDrawable(AGLContext context, GrafPtr port);

/// Makes `context` current on this thread, realizing it when needed. A context of somebody else
/// that was current here is remembered, and put back by `aglSetCurrentContext(NULL)`. With nothing
/// of ours current, null does nothing.
HALVENOR_PLATFORM GLboolean aglSetCurrentContext(AGLContext context);

/// Follows a change of the port's size or of the buffer rectangle. When `context` is current, the
/// frame buffer that the next drawing call meets has the new size, and a failure to make it is
/// reported here.
HALVENOR_PLATFORM GLboolean aglUpdateContext(AGLContext context);

/// Shows what was drawn: in the port's window, or to the offscreen port's callback. Never waits
/// for the display's refresh nor for a hidden window. The context must be current.
HALVENOR_PLATFORM void aglSwapBuffers(AGLContext context);

/// Makes an offscreen color buffer of `internalFormat` (GL_RGBA) for textures of `target`
/// (GL_TEXTURE_2D) with levels 0 to `maxLevel` (0), on the context that is current. False, with
/// null in `pbuffer`, when the driver cannot draw into such a buffer. The caller owns it and
/// releases it with `aglDestroyPBuffer` while the same context is current; null is an error without
/// effect.
HALVENOR_PLATFORM GLboolean aglCreatePBuffer(GLint width, GLint height, GLenum target,
                                             GLenum internalFormat, GLint maxLevel,
                                             AGLPbuffer* pbuffer);
HALVENOR_PLATFORM GLboolean aglDestroyPBuffer(AGLPbuffer pbuffer);

/// Makes the texture that is bound to GL_TEXTURE_2D show the buffer's `source` (GL_FRONT) from now
/// on, without copying. The texture must live as long as the buffer is drawn into. When it fails,
/// nobody sees what is drawn into the buffer.
HALVENOR_PLATFORM GLboolean aglTexImagePBuffer(AGLContext context, AGLPbuffer pbuffer,
                                               GLint source);

/// Makes `context` current and directs its drawing to `pbuffer` until it is directed elsewhere.
/// `aglSwapBuffers` then completes the drawing and shows nothing in the port. Texturing from a
/// buffer while drawing into it is undefined.
HALVENOR_PLATFORM GLboolean aglSetPBuffer(AGLContext context, AGLPbuffer pbuffer, GLint face,
                                          GLint level, GLint screen);
/// The screen argument for `aglSetPBuffer`.
HALVENOR_PLATFORM GLint aglGetVirtualScreen(AGLContext context);

/// The pending error of this thread, which it clears; and a text for any code (static).
HALVENOR_PLATFORM GLenum aglGetError(void);
HALVENOR_PLATFORM const GLubyte* aglErrorString(GLenum code);

/// The family number of the font called `name` (length-prefixed), through `family`. A family that
/// is not installed gets the nearest relative that fontconfig knows; 0 when there is no font.
HALVENOR_PLATFORM void GetFNum(const unsigned char* name, int16_t* family);

/// Fills `count` display lists from `base` with the bitmap glyphs of characters `first`... (Mac OS
/// Roman) of `family`, plain style (0), `size` pixels high (1 to 512). Each list draws its glyph at
/// the raster position and advances it. The context must be current. Sets unpack state; false
/// leaves the lists as they were.
HALVENOR_PLATFORM GLboolean aglUseFont(AGLContext context, GLint family, GLint style, GLint size,
                                       GLint first, GLint count, GLint base);

#ifdef __cplusplus
}
#endif
